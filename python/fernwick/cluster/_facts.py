"""What the bits of a picture depend on beside the graph: the program and the processor of a process."""

from __future__ import annotations

import functools
import os
import platform
import re
from pathlib import Path

from .. import _native
from .._errors import LibraryError
from .._library import find_library
from ._files import digest, digest_of

# The C library has its mathematics, and Embree its rays, in several versions, which round differently, and they choose
# by these.
_PROCESSOR_FLAGS = ("avx", "avx2", "fma", "fma4", "avx512vl")
_DECODERS = "OpenImageIO|OpenEXR|OpenEXRCore|Imath|jpeg|png16|tiff|webp|gif|openjp2|assimp|draco|embree3"
_COMPANION = "Fernwick_unrouted"

Facts = dict[str, str]


def facts() -> Facts:
    """Of this process, each by the name that messages have for it."""
    return {"package": _package(), "processor": _processor(), "C library": _c_library(), "decoders": _decoders()}


def library_files() -> dict[str, str]:
    """The hashes of the library's files by their names without folder; none where there is no library."""
    try:
        path = Path(_native.library_path() or find_library())
    except LibraryError:
        return {}
    files = (path, path.with_stem(_COMPANION))
    return {file.name: digest_of(file) for file in files if file.is_file()}


def differences(mine: Facts, theirs: Facts) -> str:
    """Such as "processor: fma here, less there"; empty when all is the same."""
    told = []
    for name in mine:
        here, there = set(mine[name].split()), set(theirs.get(name, "").split())
        if here != there:
            told.append(f"{name}: {_words(here - there)} here, {_words(there - here)} there")
    return "; ".join(told)


def _words(words: set[str]) -> str:
    return " ".join(sorted(words)) or "less"


@functools.cache
def _package() -> str:
    folder = Path(__file__).parents[1]
    files = sorted([*folder.glob("*.py"), *folder.glob("cluster/*.py"), Path(_native.__file__)])
    return f"{_native.version} {digest(''.join(digest_of(file) for file in files).encode())[:12]}"


def _processor() -> str:
    flags: list[str] = []
    if (described := Path("/proc/cpuinfo")).is_file():
        found = re.search(r"^flags\s*:(.*)$", described.read_text(), re.MULTILINE)
        flags = [] if found is None else [flag for flag in _PROCESSOR_FLAGS if flag in found[1].split()]
    reciprocals = _native.reciprocals()
    return " ".join([platform.machine(), *flags, *(["reciprocals-" + reciprocals] if reciprocals else [])])


def _c_library() -> str:
    tunables = os.environ.get("GLIBC_TUNABLES", "")  # can choose other versions than the processor's
    return " ".join(filter(None, [*platform.libc_ver(), tunables]))


def _decoders() -> str:
    maps = Path("/proc/self/maps")
    if not maps.is_file():
        return "unknown"
    names = re.findall(rf"/lib((?:{_DECODERS})[-\w.]*\.so[\w.]*)$", maps.read_text(), re.MULTILINE)
    return " ".join(sorted(set(names)))
