"""What slots take: shaders are asked for some of what they offer, and what a slot never asks for does nothing in it."""

from __future__ import annotations

from collections.abc import Iterable

VALUE, COLOR, VECTOR, SURFACE = "value", "color", "vector", "surface"
ANY = frozenset({VALUE, COLOR, SURFACE})
_NUMBER = frozenset({VALUE, COLOR})  # of a colour the luminance
_COLOR = frozenset({COLOR})

# By class; where slots of a class differ, by field.
_TAKES: dict[str, frozenset[str]] = {
    "Gray": ANY,
    "Super_mixer": _NUMBER,
    "Super_mixer_top": ANY,
    "Super_mixer_top.fSubShader[0]": _NUMBER,
    "Super_mixer_top.fSubShader[1]": _NUMBER,
    "Iridescent": _NUMBER,
    "Location": _NUMBER,
    "Fresnel": _NUMBER,
    "Proximity": _NUMBER,
    "Curvature": _NUMBER,
    "Key": _COLOR,
    "Weave": _COLOR,  # a value alone is asked for its colour, which is black
}

_TINTS = {
    SURFACE: (0.39, 0.78, 0.39, 1),
    COLOR: (0.78, 0.78, 0.16, 1),
    VALUE: (0.63, 0.63, 0.63, 1),
    VECTOR: (0.39, 0.39, 0.78, 1),
}


def takes(table: str, address: str) -> frozenset[str]:
    """What a slot asks a shader for; one of these is enough."""
    return _TAKES.get(f"{table}.{address}") or _TAKES.get(table, ANY)


def fits(offered: Iterable[str], taken: Iterable[str]) -> bool:
    return bool(set(offered) & set(taken))


def tint(kinds: Iterable[str]) -> tuple[float, float, float, float]:
    """The colour of a socket, as Blender colours its own: by the richest of what it gives or takes."""
    found = set(kinds)
    return next((_TINTS[kind] for kind in (SURFACE, COLOR, VALUE, VECTOR) if kind in found), (0.5, 0.5, 0.5, 1))


def words(kinds: Iterable[str]) -> str:
    found = set(kinds)
    names = {VALUE: "a value", COLOR: "a colour", VECTOR: "a vector", SURFACE: "a surface"}
    listed = [name for kind, name in names.items() if kind in found]
    return " or ".join([", ".join(listed[:-1]), listed[-1]] if len(listed) > 1 else listed)
