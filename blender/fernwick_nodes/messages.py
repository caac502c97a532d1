"""What the interface has to tell: by tree, and by node. Nothing of it is saved."""

from __future__ import annotations

import contextlib
import functools
import os
import re
import threading
import warnings
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import bpy

from .errors import Refusal, sentence

DOUBTS, BAKED = "doubts", "baked"  # topics
_of_trees: dict[str, dict[str, str]] = {}  # by tree and topic
_of_nodes: dict[tuple[str, str], str] = {}
_FOLDER = str(Path(__file__).parent) + os.sep
_REST = re.compile(r" \([\w/]+\.(cpp|h):\d+\)|, \d+ times$")  # of a report, where it comes from and how often
_ears = threading.local()  # what is heard in a thread
_show_before: Any = None  # while it is listened: what warnings were shown by


def tell(tree: bpy.types.NodeTree, topic: str, text: str) -> None:
    """Sets what there is to say about a topic, such as "preview"; nothing for an empty text."""
    topics = _of_trees.setdefault(tree.name, {})
    if text:
        topics[topic] = text
    else:
        topics.pop(topic, None)


def told(tree: bpy.types.NodeTree) -> list[str]:
    return [text for topic, text in _of_trees.get(tree.name, {}).items() if topic not in (DOUBTS, BAKED)]


def doubts(tree: bpy.types.NodeTree) -> str:
    """What may be a slip, and does no harm."""
    return _of_trees.get(tree.name, {}).get(DOUBTS, "")


def baked(tree: bpy.types.NodeTree) -> list[str]:
    """What there is to say about the last bake of a tree."""
    return _of_trees.get(tree.name, {}).get(BAKED, "").splitlines()


def tell_node(node: bpy.types.Node, text: str) -> None:
    key = (node.id_data.name, node.name)
    if text:
        _of_nodes[key] = text
    else:
        _of_nodes.pop(key, None)


def told_node(node: bpy.types.Node) -> str:
    return _of_nodes.get((node.id_data.name, node.name), "")


def clear() -> None:
    _of_trees.clear()
    _of_nodes.clear()


def guarded(execute: Callable[..., set[str]]) -> Callable[..., set[str]]:
    """For operators: what goes wrong is reported in the interface."""

    @functools.wraps(execute)
    def run(operator: bpy.types.Operator, context: bpy.types.Context) -> set[str]:
        try:
            return execute(operator, context)
        except Exception as error:  # a fault of ours must not lose the user's work in a trace
            operator.report({"ERROR"}, explained(error))
            return {"CANCELLED"}

    return run


@contextlib.contextmanager
def heard() -> Iterator[list[str]]:
    """What shaders and graphs report in this thread meanwhile, each once."""
    outer = getattr(_ears, "texts", None)
    _ears.texts = texts = []
    try:
        yield texts
    finally:
        _ears.texts = outer


def hear(text: str) -> None:
    """Adds to what is `heard`."""
    texts = getattr(_ears, "texts", None)
    if texts is not None and text not in texts:
        texts.append(text)


def listen() -> None:
    """Keeps from the console what the package `fernwick` reports of the add-on's doing."""
    global _show_before
    import fernwick

    for category in (fernwick.GraphWarning, fernwick.ShaderWarning):
        warnings.filterwarnings("always", category=category, module=re.escape(__package__))
    if _show_before is None:
        _show_before, warnings.showwarning = warnings.showwarning, _show


def unlisten() -> None:
    global _show_before
    if warnings.showwarning is _show:  # else somebody else hands on to it
        warnings.showwarning, _show_before = _show_before, None


def _show(message: Warning | str, category: type[Warning], filename: str, *others: Any, **also: Any) -> None:
    import fernwick

    if issubclass(category, (fernwick.GraphWarning, fernwick.ShaderWarning)) and filename.startswith(_FOLDER):
        hear(_REST.sub("", str(message)))
    else:
        _show_before(message, category, filename, *others, **also)


def explained(error: BaseException) -> str:
    """An error in a sentence; of one that nobody foresaw its kind too."""
    import fernwick

    if isinstance(error, (Refusal, fernwick.Error, ValueError, TypeError, OSError, MemoryError)):
        return sentence(error)
    return f"{type(error).__name__}: {sentence(error)}"
