"""What texts the options of the command line take; errors are the command's."""

from __future__ import annotations

import argparse
import math
import re
from collections.abc import Callable
from typing import Any

from .. import _native

LONGEST_SIDE = 65536  # pixels
_UNITS = {
    "": 1,
    "KiB": 2**10,
    "MiB": 2**20,
    "GiB": 2**30,
    "TiB": 2**40,
    "kB": 10**3,
    "MB": 10**6,
    "GB": 10**9,
    "TB": 10**12,
}

Type = Callable[[str], Any]


def checked(read_text: Type) -> Type:
    """Of what raises errors whose texts users see."""

    def take(text: str) -> Any:
        try:
            return read_text(text)
        except (ValueError, OSError) as error:
            raise argparse.ArgumentTypeError(str(error)) from None

    return take


def one_of(words: list[str]) -> Type:
    def take(text: str) -> str:
        if text not in words:
            hint = _native.nearest_hint(text, words)
            raise argparse.ArgumentTypeError(f'expected one of {", ".join(words)}, got "{text}"{hint}')
        return text

    return take


def some_of(words: list[str]) -> Type:
    take = one_of(words)
    return lambda text: [take(word) for word in text.split(",")]


def whole(least: int, most: int) -> Type:
    def take(text: str) -> int:
        if re.fullmatch("-?[0-9]{1,9}", text) is None or not least <= int(text) <= most:
            raise argparse.ArgumentTypeError(f'expected an integer from {least} to {most}, got "{text}"')
        return int(text)

    return take


@checked
def picture(text: str) -> str:
    _native.require_fit(text)
    return text


def model(text: str) -> str:
    if not text.endswith(".glb"):
        raise argparse.ArgumentTypeError(f"{text}: a model's name ends in .glb")
    return text


def size(text: str) -> tuple[int, int]:
    match = re.fullmatch(r"([0-9]{1,9})x([0-9]{1,9})", text)
    size = (0, 0) if match is None else (int(match[1]), int(match[2]))
    if not all(1 <= side <= LONGEST_SIDE for side in size):
        told = f"a size is like 640x480, each side 1 to {LONGEST_SIDE}"
        raise argparse.ArgumentTypeError(f'"{text}" is no size; {told}')
    return size


def region(text: str) -> tuple[int, int, int, int]:
    match = re.fullmatch(",".join(["([0-9]{1,9})"] * 4), text)
    left, top, right, bottom = (0, 0, 0, 0) if match is None else map(int, match.groups())
    if left >= right or top >= bottom:
        what = "one is like 0,0,320,240: left, top, and the right and bottom that aren't in it"
        raise argparse.ArgumentTypeError(f'"{text}" is no region; {what}')
    return left, top, right, bottom


def seconds(text: str) -> float:
    try:
        seconds = float(text)
    except ValueError:
        seconds = 0
    if not 0 < seconds < math.inf:
        raise argparse.ArgumentTypeError(f'expected a number above 0, got "{text}"')
    return seconds


def memory(text: str) -> int:
    match = re.fullmatch(r"(\d+(?:\.\d+)?) ?([kKMGT]i?B|)", text)
    if match is None or match[2] not in _UNITS:
        raise argparse.ArgumentTypeError(f'"{text}" is no size of memory; one is like 500MB or 4GiB')
    return int(float(match[1]) * _UNITS[match[2]])
