"""Files by the hash of their content: on the client, and in the folder of a worker."""

from __future__ import annotations

import hashlib
import os
import tempfile
from collections.abc import Iterable, Mapping
from pathlib import Path


def digest(content: bytes) -> str:
    return hashlib.sha256(content).hexdigest()


def digest_of(path: str | Path) -> str:
    """Raises OSError."""
    with open(path, "rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest()


def hashes(paths: Iterable[str], known: dict[str, str]) -> dict[str, str]:
    """The hashes of those files that exist, by name. What isn't there is missed on workers in the same way.

    :param known: hashes that were made before, and then these
    """
    found = {}
    for path in (os.path.normpath(each) for each in paths):
        if path not in known and os.path.isfile(path):
            known[path] = digest_of(path)
        if path in known:
            found[path] = known[path]
    return found


def put(path: Path, content: bytes) -> None:
    """Writes a file that appears whole. Raises OSError."""
    path.parent.mkdir(parents=True, exist_ok=True)
    handle, part = tempfile.mkstemp(dir=path.parent, prefix=".part-")
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(content)
        os.replace(part, path)
    except BaseException:
        os.unlink(part)
        raise


class Store:
    """What has come to a worker, by hash, and folders in which it has its names."""

    def __init__(self, folder: Path) -> None:
        self._folder = folder / "fernwick"

    def path(self, content_hash: str) -> Path:
        return self._folder / "content" / content_hash

    def lacks(self, content_hashes: Iterable[str]) -> list[str]:
        return [each for each in content_hashes if not self.path(each).is_file()]

    def add(self, contents: Mapping[str, bytes]) -> None:
        for content_hash in self.lacks(contents):
            put(self.path(content_hash), contents[content_hash])

    def mirror(self, name: str, files: Mapping[str, str]) -> str:
        """A folder in which files have the absolute names that they have on the client, below it.

        :param name: of the folder; files that it has stay
        """
        root = self._folder / name
        for path, content_hash in files.items():
            place = Path(f"{root}{path}")
            if not place.exists():
                place.parent.mkdir(parents=True, exist_ok=True)
                try:
                    os.link(self.path(content_hash), place)
                except FileExistsError:
                    pass  # another thread was first
        root.mkdir(parents=True, exist_ok=True)
        return str(root)
