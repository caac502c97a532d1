"""Bakes and renders on Dask distributed: `python -m fernwick.cluster bake GRAPH -o FILE`."""

from __future__ import annotations

import argparse
import contextlib
import logging
import re
import sys
import warnings
from collections.abc import Iterator, Sequence
from pathlib import Path
from typing import Any

from .. import _native, set_library
from .._errors import Error
from .._graph import Graph, _remake
from . import _options, bake, render
from ._dask import Client, Later, connect, dashboard
from ._sense import UsageError, model_and_node, require_sense
from ._terminal import Bar, Teller, tell

_ARGUMENTS = ("path", "gltf", "gltf_roughness", "gltf_occlusion", "tile", "memory", "timeout")  # that texts begin with
# What `bake` and `render` take as their options have it.
_SHARED = (
    *("frames", "region", "samples", "bits", "straight", "tiled", "compression"),
    *("tile", "memory", "timeout", "resume"),
)


def main(arguments: Sequence[str] | None = None) -> int:
    options = _options.read(sys.argv[1:] if arguments is None else arguments)
    logging.getLogger("fernwick.cluster").addHandler(Teller())
    logging.getLogger("fernwick.cluster").setLevel(logging.INFO if options.verbose else logging.WARNING)
    for name in ("distributed", "distributed.nanny", "tornado.application"):  # lost workers are told of by the run
        logging.getLogger(name).setLevel(logging.CRITICAL)
    warnings.showwarning = lambda message, *_: tell(str(message))
    try:
        require_sense(options)
        _run(options)
    except KeyboardInterrupt:
        tell("stopped")
        return 130
    except (Error, OSError) as error:
        tell(_with_option(str(error)))
        return 1
    except (UsageError, ValueError, TypeError) as error:
        tell(_with_option(str(error)))
        return 2
    return 0


def _run(options: argparse.Namespace) -> None:
    graph = _open(options)
    over = _ground(options.over) if options.command == "bake" and options.over else None
    animated = [each for each in (graph, over) if each is not None and each._sequence.has_keys]
    if options.frames is not None and len(options.frames) > 1 and not animated:
        tell(f"the graph has no keys, so all {len(options.frames)} frames are alike")
    if options.library:
        set_library(options.library)
    shared = {name: getattr(options, name) for name in _SHARED}
    with Bar(options.graph) as bar:
        client = Later(lambda: _connect(options))
        shared |= {"progress": bar.show}
        if options.command == "render":
            layers = "all" if "all" in options.layers else [name for name in options.layers if name != "none"] or None
            shared |= {"camera": options.camera, "strip": options.strip, "layers": layers}
            render(client, graph, options.picture, *options.size, **shared)
        else:
            model, node = model_and_node(options.onto)
            shared |= {"onto": model or None, "node": node, "uv_set": options.uv_set, "margin": options.margin}
            shared |= {"green": "down" if options.directx else "up", "over": over, "output": options.outputs}
            shared |= {name: getattr(options, name) for name in ("gltf", "gltf_roughness", "gltf_occlusion")}
            bake(client, graph, options.picture, *options.size, **shared)


@contextlib.contextmanager
def _connect(options: argparse.Namespace) -> Iterator[Client]:
    with connect(options.scheduler, options.workers, direct=options.direct) as client:
        if options.verbose:
            tell(f"the dashboard is {dashboard(client)}")
        yield client


def _open(options: argparse.Namespace) -> Graph:
    """The graph with what is set and plugged in it. Raises GraphError and ValueError."""
    file = options.graph
    text = _native.apply_settings(_native.read_json(file), options.sets, options.plugs, tell)
    graph = Graph.__new__(Graph)
    graph._take(text, Path(file).absolute().parent, "stdin" if file == "-" else file, {}, 1)
    return graph


def _ground(over: str) -> Graph:
    """What lies under the picture. Raises GraphError and ValueError."""
    text, file = _native.read_ground(over)
    return _remake(text, Path(file).absolute().parent if file else Path.cwd(), file, {}, 1)


def _with_option(text: str) -> str:
    """An argument of `bake` or `render` that a text begins with, or has behind the graph, by the name of its option."""
    found = re.match(rf"(.*?: )?({'|'.join(_ARGUMENTS)})(?=: )", text)
    if found is None:
        return text
    name = found[2].replace("_", "-")
    return f"{found[1] or ''}--{'picture' if name == 'path' else name}{text[found.end():]}"


if __name__ == "__main__":
    sys.exit(main())
