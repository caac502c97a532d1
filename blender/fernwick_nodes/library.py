"""Finds and loads the Python package `fernwick`, which does all the shading."""

from __future__ import annotations

import importlib
import os
import sys
import zipfile
from pathlib import Path
from types import ModuleType

import bpy

GUIDE = Path(__file__).parent / "guide.md"
_WHEELS = Path(__file__).parent / "wheels"
_NEEDS = "libassimp5 libembree3-3 libfmt9 libopenimageio2.4 libtbb12"  # packages of Debian 12, of the wheel
_missing = ""


def load() -> ModuleType | None:
    """The package, or None, of which `missing` tells why.

    One that is installed counts first: Blender 4.2 and later installs the wheel of the add-on. Earlier ones have the
    wheel unpacked into the folder where Blender keeps what belongs to its user.
    """
    global _missing
    try:
        module = _installed() or _unpacked()
        module.classes()
        module.library()
    except Exception as error:  # whatever a broken build throws must not keep Blender from starting
        _missing = f"The shaders can't be loaded: {error}. {_remedy(error)}, and start Blender anew"
        return None
    _missing = ""
    return module


def missing() -> str:
    """Why the shaders can't be used; empty when they can."""
    return _missing


def where() -> str:
    """What is used, and how to begin."""
    import fernwick

    return (
        f"The shaders are loaded from {fernwick.library().parent}. Split the 3D view and choose Fernwick as the type of "
        "the new editor; its sidebar (N), tab Fernwick, makes the first tree"
    )


def _remedy(error: Exception) -> str:
    text = str(error)
    if "FERNWICK_LIBRARY" in text:
        return "Mend or unset that variable of the environment"
    if "shared object file" in text:
        return f"Install what they need, in Debian 12 with: sudo apt install {_NEEDS}"
    return (
        "Install the package fernwick into the Python of this Blender, in Debian 12 with: "
        "sudo apt install ./fernwick-shaders_*.deb ./python3-fernwick_*.deb; or take Debian 12's Blender and the zip "
        "with the wheel in it"
    )


def _installed() -> ModuleType | None:
    try:
        return importlib.import_module("fernwick")
    except ModuleNotFoundError as error:
        if error.name != "fernwick":
            raise
        return None


def _unpacked() -> ModuleType:
    wheels = sorted(_WHEELS.glob("fernwick-*.whl"))
    if not wheels:
        raise ImportError("the package fernwick isn't installed, and this add-on has no wheel of it")
    wheel = wheels[-1]
    version = "cp{}{}".format(*sys.version_info[:2])
    if f"-{version}-" not in wheel.name:
        raise ImportError(
            f"this Blender has Python {sys.version_info[0]}.{sys.version_info[1]}; {wheel.name} is for another"
        )
    data = bpy.utils.user_resource("DATAFILES", path="fernwick", create=True)
    # By size and time too: a wheel of the same version may be another build.
    stamp = wheel.stat()
    folder = Path(data) / f"{wheel.stem}-{stamp.st_size}-{int(stamp.st_mtime)}"
    if not folder.is_dir():
        fresh = folder.with_name(f"{folder.name}.{os.getpid()}.part")
        with zipfile.ZipFile(wheel) as archive:
            archive.extractall(fresh)
        try:
            fresh.rename(folder)
        except OSError:  # another Blender was faster
            if not folder.is_dir():
                raise
    if str(folder) not in sys.path:
        sys.path.append(str(folder))
    importlib.invalidate_caches()
    return importlib.import_module("fernwick")
