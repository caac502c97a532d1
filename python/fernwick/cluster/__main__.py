"""Bakes and renders on Dask distributed: `python -m fernwick.cluster bake GRAPH -o FILE`."""

from __future__ import annotations

import argparse
import logging
import os
import re
import sys
import time
import warnings
from collections.abc import Sequence
from typing import Any, NoReturn

from .. import _native, set_library
from .._errors import Error
from .._graph import Graph
from . import MEMORY, _plan, bake, render
from ._dask import connect, dashboard

_EPILOG = """Pictures, frames and names are those of the command fernwick, which tells more; the files are the same.
Exit status: 0 done, 1 the job failed, 2 the command line is wrong, 130 stopped by Ctrl-C."""
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


def main(arguments: Sequence[str] | None = None) -> int:
    options = _parser().parse_args(arguments)
    if options.command == "bake":
        _require_sense(options)
    logging.getLogger("fernwick.cluster").addHandler(_Teller())
    logging.getLogger("fernwick.cluster").setLevel(logging.INFO if options.verbose else logging.WARNING)
    for name in ("distributed", "distributed.nanny", "tornado.application"):  # lost workers are told of by the run
        logging.getLogger(name).setLevel(logging.CRITICAL)
    warnings.showwarning = lambda message, *_: _tell(str(message))
    try:
        _run(options)
    except KeyboardInterrupt:
        _tell("stopped")
        return 130
    except (Error, OSError) as error:
        _tell(str(error))
        return 1
    except (ValueError, TypeError) as error:
        _tell(str(error))
        return 2
    return 0


def _run(options: argparse.Namespace) -> None:
    if options.library:
        set_library(options.library)
    if options.graph == "-":
        graph = Graph(sys.stdin.read())
    else:
        graph = Graph.load(options.graph)
    shared: dict[str, Any] = {
        "frames": options.frames,
        "region": options.region,
        "samples": options.samples,
        "bits": options.bits,
        "straight": options.straight,
        "tiled": options.tiled,
        "compression": options.compression,
        "tile": options.tile,
        "memory": options.memory,
        "timeout": options.timeout,
        "resume": options.resume,
    }
    with connect(options.scheduler, options.workers, direct=options.direct) as client:
        if options.verbose:
            _tell(f"the dashboard is {dashboard(client)}")
        with _Bar(options.graph) as bar:
            if options.command == "render":
                shared |= {"camera": options.camera, "strip": options.strip, "layers": options.layers}
                render(client, graph, options.picture, *options.size, progress=bar.show, **shared)
            else:
                model, _, node = (options.onto or "").partition("#")
                shared |= {"onto": model or None, "node": node, "uv_set": options.uv_set, "margin": options.margin}
                shared |= {"green": "down" if options.directx else "up"}
                shared |= {"over": Graph.load(options.over) if options.over else None}
                shared |= {"output": options.outputs}
                bake(client, graph, options.picture, *options.size, progress=bar.show, **shared)


def _require_sense(options: argparse.Namespace) -> None:
    """Of outputs and what is for some of them only."""
    if options.lit:
        if options.outputs not in ("color", "lit"):
            _parser().error(f'--lit bakes the output "lit"; it can\'t be "{options.outputs}" too')
        options.outputs = "lit"
    outputs = options.outputs if isinstance(options.outputs, list) else [options.outputs]
    if options.directx and "normal" not in outputs:
        _parser().error("--directx is for a normal map; it goes with --output normal")
    if options.over and not {"color", "main", "lit"}.intersection(outputs):
        _parser().error(f'--over lies under a colour; the output "{outputs[0]}" has none')


class _Parser(argparse.ArgumentParser):
    """Tells what is wrong as the command does."""

    def error(self, message: str) -> NoReturn:
        _tell(message)
        print(f"  `{self.prog} --help` tells more", file=sys.stderr)
        sys.exit(2)


def _parser() -> argparse.ArgumentParser:
    parser = _Parser(
        prog="python -m fernwick.cluster",
        description="Bakes and renders on more than one machine, by Dask distributed.",
        epilog=_EPILOG,
        formatter_class=argparse.RawDescriptionHelpFormatter,
    )
    commands = parser.add_subparsers(dest="command", required=True, metavar="bake|render")
    baking = commands.add_parser("bake", help="shades the UV square, or a model, with a graph", epilog=_EPILOG)
    rendering = commands.add_parser("render", help="renders the scene of a graph", epilog=_EPILOG)
    for command, samples in ((baking, 1), (rendering, 9)):
        add = command.add_argument
        add("graph", metavar="GRAPH", help="the graph of shaders, a JSON file; - is stdin")
        add("-o", "--picture", metavar="FILE", required=True, help="the picture: .png, .exr, .tif or .tx")
        add("--size", metavar="WxH", type=_size, default=(512, 512), help="width and height in pixels (512x512)")
        add(
            "--region",
            metavar="X0,Y0,X1,Y1",
            type=_region,
            help="a part of the picture, in pixels, the ends not included",
        )
        add("--frames", metavar="FRAMES", type=_plan.frames, help="makes a picture of each frame, as of 1-24")
        add("--samples", metavar="N", type=_count, default=samples, help=f"samples a pixel ({samples})")
        add("--bits", metavar="N", type=int, choices=(8, 16, 32), default=0, help="bits of a channel")
        add("--straight", action="store_true", help="leaves the colours of floats not multiplied by the alpha")
        add("--tiled", action="store_true", help="lays an .exr or .tif out in tiles of 64 pixels")
        add("--compression", metavar="NAME", default="", help="how an .exr, .tx or .tif is compressed")
        add("--library", metavar="FILE", help="the library that shades (else FERNWICK_LIBRARY, or near the package)")
        add("--scheduler", metavar="ADDRESS", help="where Dask runs, as tcp://host:8786; without it, on this machine")
        add(
            "--workers",
            metavar="N",
            type=_count,
            default=os.cpu_count() or 1,
            help="processes without --scheduler (one a processor)",
        )
        add(
            "--direct",
            action="store_true",
            help="takes tiles from workers past the scheduler, where they can be reached",
        )
        usual = "{}x{}".format(*_plan.USUAL_TILE["bake" if command is baking else "render"])
        add("--tile", metavar="WxH", type=_size, help=f"what a worker shades at a time ({usual})")
        add(
            "--memory",
            metavar="SIZE",
            type=_bytes,
            default=MEMORY,
            help="for pixels in this process, as 500MB or 4GiB (1GiB)",
        )
        add(
            "--timeout",
            metavar="S",
            type=float,
            default=600,
            help="seconds for a tile before its worker is restarted (600)",
        )
        add("--resume", metavar="FOLDER", help="keeps finished tiles there, and begins with those that it has")
        add("--verbose", action="store_true", help="tells of each tile")
    rendering.add_argument("--strip", action="store_true", help="puts all frames side by side in one picture")
    groups = ", ".join(["none", "all", *_native.layer_groups()])
    rendering.add_argument("--layers", metavar="NAMES", type=_layers, help=f"layers of an .exr, by commas: {groups}")
    rendering.add_argument("--camera", metavar="NAME", default="", help="the camera to render from")
    add = baking.add_argument
    outputs = ", ".join(_native.channel_names())
    add(
        "--output",
        "--outputs",
        dest="outputs",
        metavar="NAMES",
        type=_names,
        default="color",
        help=f"{outputs}; several by commas",
    )
    add("--lit", action="store_true", help="short for --output lit")
    add("--directx", action="store_true", help="green of a normal map points down")
    add("--over", metavar="GRAPH", help="lays the colour over another graph")
    add("--onto", metavar="MODEL[#NODE]", help="bakes onto a model, or one node of it or of the scene")
    add("--uv-set", metavar="N", type=int, default=0, help="the set of UV that lays the model out (0)")
    add("--margin", metavar="N", type=int, default=16, help="pixels by which what is covered is continued (16)")
    return parser


def _size(text: str) -> tuple[int, int]:
    match = re.fullmatch(r"(\d{1,5})x(\d{1,5})", text)
    if match is None:
        raise argparse.ArgumentTypeError(f'"{text}" is no size; a size is like 640x480')
    return int(match[1]), int(match[2])


def _count(text: str) -> int:
    if not text.isascii() or not text.isdigit() or not 1 <= int(text) <= 4096:
        raise argparse.ArgumentTypeError(f'"{text}" is no whole number from 1 to 4096')
    return int(text)


def _region(text: str) -> tuple[int, ...]:
    if re.fullmatch(r"\d{1,5}(,\d{1,5}){3}", text) is None:
        what = "one is like 0,0,320,240: left, top, and the right and bottom that aren't in it"
        raise argparse.ArgumentTypeError(f'"{text}" is no region; {what}')
    return tuple(map(int, text.split(",")))


def _layers(text: str) -> str | list[str] | None:
    names = text.split(",")
    return "all" if "all" in names else [name for name in names if name != "none"] or None


def _bytes(text: str) -> int:
    match = re.fullmatch(r"(\d+(?:\.\d+)?) ?([kKMGT]i?B|)", text)
    if match is None or match[2] not in _UNITS:
        raise argparse.ArgumentTypeError(f'"{text}" is no size of memory; one is like 500MB or 4GiB')
    return int(float(match[1]) * _UNITS[match[2]])


def _names(text: str) -> str | list[str]:
    names = text.split(",")
    return names if len(names) > 1 else text


def _tell(text: str) -> None:
    print(f"\r\033[Kfernwick: {text}" if sys.stderr.isatty() else f"fernwick: {text}", file=sys.stderr)


class _Teller(logging.Handler):
    def emit(self, record: logging.LogRecord) -> None:
        _tell(record.getMessage())


class _Bar:
    """A line on the terminal that shows how far the work is, as the command has it."""

    def __init__(self, label: str) -> None:
        self._label = label
        self._is_shown = sys.stderr.isatty()
        self._percent = -1
        self._begun = time.monotonic()

    def __enter__(self) -> _Bar:
        self.show(0)
        return self

    def __exit__(self, *_: object) -> None:
        if self._is_shown:
            print("\r\033[K", end="", file=sys.stderr, flush=True)

    def show(self, share: float) -> None:
        percent = int(share * 100)
        if not self._is_shown or percent == self._percent:
            return
        self._percent = percent
        passed = time.monotonic() - self._begun
        left = int(passed * (1 - share) / share + 0.5) if share > 0 and passed >= 1 else None
        time_left = (
            "" if left is None else f", {left} s left" if left < 60 else f", {left // 60} min {left % 60} s left"
        )
        filled = "=" * (percent * 40 // 100)
        print(f"\r[{filled:40}] {percent:3} %  {self._label}{time_left}\033[K", end="", file=sys.stderr, flush=True)


if __name__ == "__main__":
    sys.exit(main())
