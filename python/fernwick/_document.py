"""Documents out of Python's objects: shaders get names, arrays and meshes tokens."""

from __future__ import annotations

import itertools
import json
import re
from collections.abc import Iterator, Mapping
from pathlib import PurePath
from typing import Any

from . import _arguments, _native
from ._errors import GraphError
from ._keyed import Keyed
from ._mesh import Mesh
from ._numpy import is_array
from ._pixels import Pixels
from ._plain import NOT_SPECIAL, Json, plain
from ._scene import _Part
from ._shader import Shader

File = Pixels | Mesh


class DocumentBuilder:
    """Makes one document, and collects what it names instead of files."""

    def __init__(self) -> None:
        self.files: dict[str, File] = {}
        self._names: dict[int, str] = {}  # of shaders by their identity
        self._kept: list[Shader] = []  # so that no identity is given away
        self._taken: set[str] = set()
        self._reserved: frozenset[str] = frozenset()
        self._shaders: dict[str, Json] = {}

    def document(self, document: object, scene: object) -> dict[str, Json] | str:
        """The document of a shader, a mapping or a text, with a scene if one is given."""
        self.reserve(document, scene)
        members: dict[str, Json] | str
        if isinstance(document, Shader):
            members = self.of_shader(document)
        elif isinstance(document, Mapping):
            members = self.of_mapping(document)
        elif isinstance(document, str):
            members = document if scene is None else _parsed(document)
        else:
            hint = "; Graph.load reads files" if isinstance(document, PurePath) else ""
            raise TypeError(f"document: expected a shader, a mapping or JSON, got {type(document).__name__}{hint}")
        if scene is not None and not isinstance(members, str):
            self.add_scene(members, scene)
        return members

    def of_shader(self, output: Shader) -> dict[str, Json]:
        """The document of a shader and all that is plugged in below it."""
        return {"shaders": self._shaders, "output": self._add(output)}

    def of_mapping(self, document: Mapping[str, Any]) -> dict[str, Json]:
        """A document as JSON has it. Shaders among its values are added to it."""
        shaders = document.get("shaders")
        if isinstance(shaders, Mapping):
            self._taken.update(name for name in shaders if isinstance(name, str))
        made: dict[str, Json] = plain(document, "", self._special)
        self.add_shaders(made)
        return made

    def add_scene(self, document: dict[str, Json], scene: object) -> None:
        if not isinstance(scene, (_Part, Mapping)):
            raise TypeError(f"scene: expected a Scene or a mapping, got {type(scene).__name__}")
        shaders = document.get("shaders")
        if isinstance(shaders, Mapping):
            self._taken.update(shaders)
        document["scene"] = plain(scene, "scene", self._special)
        self.add_shaders(document)

    def add_shaders(self, document: dict[str, Json]) -> None:
        """Puts the collected shaders behind those that the document has."""
        shaders = document.get("shaders", {})
        if self._shaders and isinstance(shaders, dict):
            document["shaders"] = {**shaders, **self._shaders}

    def _special(self, value: Any, place: str) -> Json:
        if isinstance(value, Shader):
            return self._add(value)
        if isinstance(value, Keyed):
            keys = [[frame, plain(at_key, place, self._special)] for frame, at_key in value.keys]
            return {"keys": keys, **({"between": value.between} if value.between else {})}
        if isinstance(value, (Pixels, Mesh)):
            return self._token(value)
        if is_array(value) and _FILE.search(place):
            return self._token(Pixels.of(value, place))
        if isinstance(value, _Part):
            return plain(value.members(), place, self._special)
        return NOT_SPECIAL

    def _token(self, file: File) -> str:
        self.files[file.token] = file
        return file.token

    def _add(self, shader: Shader) -> str:
        known = self._names.get(id(shader))
        if known is not None:
            return known
        name = self._name_for(shader)
        self._names[id(shader)] = name
        self._kept.append(shader)
        table = shader._table
        members: dict[str, Json] = {"source" if table.is_source else "class": table.name}
        self._shaders[name] = members
        for row_name, row in table.rows.items():
            for address, value in shader._set(row_name, row):
                members[address] = plain(value, f"{name}.{address}", self._special)
        return name

    def _name_for(self, shader: Shader) -> str:
        if shader.name is not None:
            if shader.name in self._taken:
                raise GraphError(f'two shaders have the name "{shader.name}"')
            self._taken.add(shader.name)
            return shader.name
        base = shader._table.name.lower()
        names = itertools.chain([base], (f"{base}{i}" for i in itertools.count(2)))
        name = next(name for name in names if name not in self._taken and name not in self._reserved)
        self._taken.add(name)
        return name

    def reserve(self, *values: object) -> None:
        """Keeps the names that users gave to shaders among some values from those that are made."""
        found: dict[int, Shader] = {}
        for value in values:
            _find_shaders(value, found)
        self._reserved = frozenset(shader.name for shader in found.values() if shader.name is not None)


def _find_shaders(value: object, found: dict[int, Shader]) -> None:
    if isinstance(value, Shader):
        if id(value) not in found:
            found[id(value)] = value
            _find_shaders(value.shaders, found)
        return
    if isinstance(value, Keyed):
        value = [at_key for _, at_key in value.keys]
    elif isinstance(value, _Part):
        value = value.members()
    if isinstance(value, Mapping):
        value = list(value.values())
    if isinstance(value, (list, tuple)):
        for member in value:
            _find_shaders(member, found)


def _parsed(text: str) -> dict[str, Any]:
    _native.Sequence(text, "", "", {}, {})  # its errors are those of all documents
    document = json.loads(text)
    if not isinstance(document, dict):
        raise GraphError(f"the document: expected an object, got {_arguments.shown(document)}")
    return document


_FILE = re.compile(r"\.(file|path)(\.keys\[\d+\]\[1\])?$")  # places


def names_relative_file(document: Json) -> bool:
    """Whether what a document means depends on its folder."""
    return any(not PurePath(name).is_absolute() for name in _file_names(document, False))


def _file_names(value: Json, is_file: bool) -> Iterator[str]:
    if isinstance(value, dict):
        for key, member in value.items():
            yield from _file_names(member, key in ("file", "path") or (is_file and key == "keys"))
    elif isinstance(value, list):
        for member in value:
            yield from _file_names(member, is_file)
    elif is_file and isinstance(value, str) and not value.startswith(("picture:", "mesh:")):
        yield value
