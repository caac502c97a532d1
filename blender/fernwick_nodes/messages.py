"""What the interface has to tell: by tree, and by node. Nothing of it is saved."""

from __future__ import annotations

import functools
from collections.abc import Callable

import bpy

from .errors import Refusal, sentence

DOUBTS = "doubts"  # a topic
_of_trees: dict[str, dict[str, str]] = {}  # by tree and topic
_of_nodes: dict[tuple[str, str], str] = {}


def tell(tree: bpy.types.NodeTree, topic: str, text: str) -> None:
    """Sets what there is to say about a topic, such as "preview"; nothing for an empty text."""
    topics = _of_trees.setdefault(tree.name, {})
    if text:
        topics[topic] = text
    else:
        topics.pop(topic, None)


def told(tree: bpy.types.NodeTree) -> list[str]:
    return [text for topic, text in _of_trees.get(tree.name, {}).items() if topic != DOUBTS]


def doubts(tree: bpy.types.NodeTree) -> str:
    """What may be a slip, and does no harm."""
    return _of_trees.get(tree.name, {}).get(DOUBTS, "")


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


def explained(error: BaseException) -> str:
    """An error in a sentence; of one that nobody foresaw its kind too."""
    import fernwick

    if isinstance(error, (Refusal, fernwick.Error, ValueError, TypeError, OSError, MemoryError)):
        return sentence(error)
    return f"{type(error).__name__}: {sentence(error)}"
