"""The options of the command line: those of the command fernwick that mean something on several machines, and its own."""

from __future__ import annotations

import argparse
import os
import sys
from collections.abc import Sequence
from typing import Any, NoReturn

from .. import _native
from . import MEMORY, _plan, _values
from ._terminal import tell

_PROGRAM = "python -m fernwick.cluster"
_ABOUT = "Bakes and renders on more than one machine, by Dask distributed."
_COMMANDS = {
    "bake": "Shades the UV square, or a model, with a graph into a picture.",
    "render": "Renders the scene of a graph into a picture.",
}
_EPILOG = """The help of `fernwick {}` tells more of what both have; the files are the same.
Exit status: 0 done, 1 the job failed, 2 the command line is wrong, 130 stopped by Ctrl-C."""


def read(arguments: Sequence[str]) -> argparse.Namespace:
    """What a command line asks for. Ends the process with help, and where the line can't be read, as the command does."""
    name = arguments[0] if arguments else ""
    if name not in _COMMANDS:
        _answer_without_command(name)
    parser = _parser(name)
    try:
        options, extra = parser.parse_known_args(arguments[1:])
    except argparse.ArgumentError as error:
        _fail(_told(parser, error), name)
    word = next((word for word in extra if word.startswith("-")), extra[0] if extra else "")
    if word.startswith("-"):
        option = word.partition("=")[0]
        known = [string for action in parser._actions for string in action.option_strings]
        _fail(f'there is no option "{option}"{_native.nearest_hint(option, known)}', name)
    if word:
        _fail(f'"{word}" is one argument too many', name)
    for required, told in (("graph", "graph"), ("picture", "--picture")):
        if getattr(options, required) is None:
            _fail(f"{told} is required", name)
    if name == "render" and options.strip and options.frames is None:
        _fail("--strip requires --frames", name)
    options.command = name
    options.bits = int(options.bits)
    options.compression = options.compression or ""
    return options


def _answer_without_command(word: str) -> NoReturn:
    parser = argparse.ArgumentParser(
        prog=_PROGRAM,
        usage=f"{_PROGRAM} bake|render [OPTIONS] graph",
        description=_ABOUT,
        epilog="\n".join(f"{name:8} {about}" for name, about in _COMMANDS.items())
        + f"\n\n`{_PROGRAM} bake --help` tells more.",
        formatter_class=argparse.RawDescriptionHelpFormatter,
    )
    if word in ("-h", "--help"):
        parser.print_help()
        sys.exit(0)
    if not word:
        parser.print_help(sys.stderr)
        sys.exit(2)
    if word.startswith("-"):
        _fail(f'there is no option "{word.partition("=")[0]}"{_native.nearest_hint(word, ["--help"])}')
    _fail(f'there is no command "{word}"{_native.nearest_hint(word, list(_COMMANDS))}')


def _fail(text: str, command: str = "") -> NoReturn:
    tell(f"{text}\n  `{' '.join(filter(None, [_PROGRAM, command]))} --help` tells more")
    sys.exit(2)


def _told(parser: argparse.ArgumentParser, error: argparse.ArgumentError) -> str:
    action = next(each for each in parser._actions if "/".join(each.option_strings) == error.argument_name)
    name = next(string for string in action.option_strings if string.startswith("--"))
    is_missing = error.message == "expected one argument"
    return f"{name}: {f'1 required {action.metavar} missing' if is_missing else error.message}"


class _Once(argparse.Action):
    """Takes an option that is given once."""

    def __call__(self, parser: Any, namespace: argparse.Namespace, values: Any, option_string: Any = None) -> None:
        given = vars(namespace).setdefault("given", set())
        if self.dest in given:
            raise argparse.ArgumentError(self, "At Most 1 required but received 2")
        given.add(self.dest)
        setattr(namespace, self.dest, values)


class _Names(argparse.Action):
    """Takes names by commas, of an option that may be given again."""

    def __call__(self, parser: Any, namespace: argparse.Namespace, values: Any, option_string: Any = None) -> None:
        given = vars(namespace).setdefault("given", set())
        before = getattr(namespace, self.dest) if self.dest in given else []
        given.add(self.dest)
        setattr(namespace, self.dest, [*before, *values])


def _parser(command: str) -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog=f"{_PROGRAM} {command}",
        usage=f"{_PROGRAM} {command} [OPTIONS] graph",
        description=_COMMANDS[command],
        epilog=_EPILOG.format(command),
        formatter_class=argparse.RawDescriptionHelpFormatter,
        allow_abbrev=False,
        exit_on_error=False,
    )
    graph = parser.add_argument("graph", metavar="graph", help="the graph of shaders, a JSON file; - is stdin")
    graph.required = False  # that it is missing is told of after what is wrong
    _add_graph_options(parser)
    _add_picture_options(parser)
    if command == "bake":
        _add_bake_options(parser)
    else:
        _add_render_options(parser)
    _add_cluster_options(parser, command)
    return parser


def _add_graph_options(parser: argparse.ArgumentParser) -> None:
    add = parser.add_argument
    add(
        "--set",
        dest="sets",
        metavar="[NAME.]FIELD=VALUE",
        action="append",
        default=[],
        help="sets a field of a shader in the graph, of the output without NAME; to be given for each",
    )
    add(
        "--plug",
        dest="plugs",
        metavar="[NAME.]FIELD=SOURCE",
        action="append",
        default=[],
        help="plugs a source, or another shader of the graph, into a slot; to be given for each",
    )
    add(
        "--frames",
        metavar="FRAMES",
        action=_Once,
        type=_values.checked(_plan.frames),
        help="makes a picture of each frame, as of 1-24",
    )


def _add_picture_options(parser: argparse.ArgumentParser) -> None:
    add = parser.add_argument
    add(
        "-o",
        "--picture",
        metavar="FILE",
        action=_Once,
        type=_values.picture,
        help="the picture: .png, .exr, .tif or .tx; - is a PNG on stdout",
    )
    add(
        "--bits", metavar="N", action=_Once, type=_values.one_of(["8", "16", "32"]), default=0, help="bits of a channel"
    )
    add("--straight", action="store_true", help="leaves the colours of floats not multiplied by the alpha")
    add("--tiled", action="store_true", help="lays an .exr or .tif out in tiles of 64 pixels")
    compressions = _native.compressions()
    add(
        "--compression",
        metavar="NAME",
        action=_Once,
        type=_values.one_of(compressions),
        help=f"how an .exr or .tx is compressed: {', '.join(compressions)}; a .tif by zip or none",
    )
    add(
        "--size",
        metavar="WxH",
        action=_Once,
        type=_values.size,
        default=(512, 512),
        help="width and height in pixels (512x512)",
    )
    add(
        "--region",
        metavar="X0,Y0,X1,Y1",
        action=_Once,
        type=_values.region,
        help="a part of the picture, in pixels, the ends not included",
    )


def _add_bake_options(parser: argparse.ArgumentParser) -> None:
    add = parser.add_argument
    outputs = _native.channel_names()
    add(
        "--output",
        "--outputs",
        dest="outputs",
        metavar="CHANNEL",
        action=_Names,
        type=_values.some_of(outputs),
        default=["color"],
        help=f"what is baked, {', '.join(outputs)}; several by commas, into pictures named by {{output}}",
    )
    add("--lit", action="store_true", help="short for --output lit")
    add("--directx", action="store_true", help="green of a normal map points down (DirectX), not up")
    add(
        "--over",
        metavar="SOURCE",
        action=_Once,
        default="",
        help="lays the colour, by its alpha, over a source, such as color:#f80, or another graph",
    )
    _add_samples(parser, 1)
    add(
        "--onto",
        metavar="MODEL[#NODE]",
        action=_Once,
        default="",
        help="bakes onto a model (glTF, OBJ ...), or one node of it or of the scene",
    )
    widest = _native.widest_margin
    add(
        "--margin",
        metavar="N",
        action=_Once,
        type=_values.whole(0, widest),
        default=16,
        help=f"pixels by which what is covered is continued, up to {widest} (16)",
    )
    add(
        "--uv-set",
        metavar="N",
        action=_Once,
        type=_values.whole(0, 7),
        default=0,
        help="the set of UV that lays the model out (0)",
    )
    add(
        "--gltf",
        metavar="FILE",
        action=_Once,
        type=_values.model,
        help="writes the model with the pictures in it: color, normal and those of the next two options",
    )
    for output in ("roughness", "occlusion"):
        add(
            f"--gltf-{output}",
            metavar="SHADER",
            action=_Once,
            default="",
            help=f"a shader of the graph whose value is the {output}",
        )


def _add_render_options(parser: argparse.ArgumentParser) -> None:
    add = parser.add_argument
    add("--strip", action="store_true", help="puts all frames side by side in one picture")
    groups = ["none", "all", *_native.layer_groups()]
    add(
        "--layers",
        metavar="NAMES",
        action=_Names,
        type=_values.some_of(groups),
        default=["none"],
        help=f"layers of an .exr, by commas: {', '.join(groups)}",
    )
    add("--camera", metavar="NAME", action=_Once, default="", help="the camera to render from")
    _add_samples(parser, 9)


def _add_samples(parser: argparse.ArgumentParser, usual: int) -> None:
    parser.add_argument(
        "--samples",
        metavar="N",
        action=_Once,
        type=_values.whole(1, 4096),
        default=usual,
        help=f"samples a pixel ({usual})",
    )


def _add_cluster_options(parser: argparse.ArgumentParser, command: str) -> None:
    add = parser.add_argument
    add(
        "--library",
        metavar="PATH",
        action=_Once,
        help="the library that shades (else FERNWICK_LIBRARY, else near the package)",
    )
    add(
        "--scheduler",
        metavar="ADDRESS",
        action=_Once,
        help="where Dask runs, as tcp://host:8786; without it, on this machine",
    )
    add(
        "--workers",
        metavar="N",
        action=_Once,
        type=_values.whole(1, 4096),
        default=os.cpu_count() or 1,
        help="processes without --scheduler (one a processor)",
    )
    add("--direct", action="store_true", help="takes tiles from workers past the scheduler, where they can be reached")
    usual = "{}x{}".format(*_plan.USUAL_TILE[command])
    add("--tile", metavar="WxH", action=_Once, type=_values.size, help=f"what a worker shades at a time ({usual})")
    add(
        "--memory",
        metavar="SIZE",
        action=_Once,
        type=_values.memory,
        default=MEMORY,
        help="for pixels in this process, as 500MB or 4GiB (1GiB)",
    )
    add(
        "--timeout",
        metavar="S",
        action=_Once,
        type=_values.seconds,
        default=600,
        help="seconds for a tile before its worker is restarted (600)",
    )
    add(
        "--resume", metavar="FOLDER", action=_Once, help="keeps finished tiles there, and begins with those that it has"
    )
    add("--verbose", action="store_true", help="tells of each tile")
