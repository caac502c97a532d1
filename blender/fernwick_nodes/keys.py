"""Values that change over frames: F-curves of Blender, and keys of documents."""

from __future__ import annotations

import math
from typing import Any, NamedTuple

import bpy

from .fields import UNSHOWN, Leaf, is_keyed, shortest, show, single, tell

_INTERPOLATION = {"linear": "LINEAR", "step": "CONSTANT", "smooth": "BEZIER"}


class Track(NamedTuple):
    """One number over frames."""

    between: str  # linear, smooth or step
    keys: tuple[tuple[float, float], ...]


Component = float | Track


def path(node: bpy.types.Node, leaf: Leaf) -> str:
    """Of a property, as F-curves and drivers of its tree name it."""
    return f'nodes["{bpy.utils.escape_identifier(node.name)}"].{leaf.property}'


def components_of(leaf: Leaf, value: Any) -> tuple[Component, ...] | None:
    """A document's value with keys as single numbers, such as F-curves have; None where there are no such."""
    if not leaf.components:
        return None
    if is_keyed(value):
        shown = [(float(frame), show(leaf, at_key)) for frame, at_key in value["keys"]]
        if any(at_key is UNSHOWN for _, at_key in shown):
            return None
        between = "step" if leaf.steps else value.get("between") or "linear"
        columns = [(frame, _numbers(leaf, at_key)) for frame, at_key in shown]
        return tuple(Track(between, tuple((frame, row[i]) for frame, row in columns)) for i in range(leaf.components))
    if isinstance(value, list) and len(value) == leaf.components:
        parts = [_track_of(part) if is_keyed(part) else part for part in value]
        if all(
            isinstance(part, Track) or (isinstance(part, (int, float)) and not isinstance(part, bool)) for part in parts
        ):
            return tuple(part if isinstance(part, Track) else single(part) for part in parts)
    return None


def animate(tree: bpy.types.NodeTree, node: bpy.types.Node, leaf: Leaf, components: tuple[Component, ...]) -> None:
    """Gives a property the F-curves of the components that change, and those that don't their values."""
    if tree.animation_data is None:
        tree.animation_data_create()
    if tree.animation_data.action is None:
        tree.animation_data.action = bpy.data.actions.new(f"{tree.name} keys")
    curves = tree.animation_data.action.fcurves
    for i, track in enumerate(components):
        if not isinstance(track, Track):
            getattr(node, leaf.property)[i] = track
            continue
        index = i if leaf.components > 1 else 0
        old = curves.find(path(node, leaf), index=index)
        if old is not None:
            curves.remove(old)
        curve = curves.new(path(node, leaf), index=index)
        curve.keyframe_points.add(len(track.keys))
        for point, (frame, value) in zip(curve.keyframe_points, track.keys):
            point.co = (frame, value)
            point.interpolation = _INTERPOLATION[track.between]
        _flatten(curve)
        curve.update()


def animated_properties(node: bpy.types.Node) -> set[str]:
    """The properties of a node that have F-curves or drivers."""
    animation = node.id_data.animation_data
    if animation is None:
        return set()
    start = f'nodes["{bpy.utils.escape_identifier(node.name)}"].'
    curves = [*(animation.action.fcurves if animation.action else ()), *animation.drivers]
    return {curve.data_path[len(start) :] for curve in curves if curve.data_path.startswith(start)}


def animated(tree: bpy.types.NodeTree, node: bpy.types.Node, leaf: Leaf, shown: Any) -> tuple[Component, ...] | None:
    """A property's numbers over frames as its F-curves have them; None without any."""
    action = tree.animation_data.action if tree.animation_data else None
    if action is None or not leaf.components:
        return None
    curves = [action.fcurves.find(path(node, leaf), index=i) for i in range(leaf.components)]
    if not any(curve is not None and curve.keyframe_points for curve in curves):
        return None
    return tuple(
        number if curve is None or not curve.keyframe_points else _read(curve, leaf)
        for number, curve in zip(_numbers(leaf, shown), curves)
    )


def keyed(leaf: Leaf, components: tuple[Component, ...]) -> Any:
    """Numbers over frames as a document has them."""
    tracks = [track for track in components if isinstance(track, Track)]
    frames = [[frame for frame, _ in track.keys] for track in tracks]
    if len(tracks) == len(components) and all(f == frames[0] for f in frames) and len({t.between for t in tracks}) == 1:
        rows = zip(*([value for _, value in track.keys] for track in tracks))
        keys = [[shortest(frame), _value(leaf, row)] for frame, row in zip(frames[0], rows)]
        return _document(leaf, keys, tracks[0].between)
    return [
        _document(leaf, [[shortest(f), shortest(v)] for f, v in part.keys], part.between)
        if isinstance(part, Track)
        else shortest(part)
        for part in components
    ]


def _document(leaf: Leaf, keys: list[Any], between: str) -> dict[str, Any]:
    usual = "step" if leaf.steps else "linear"
    return {"keys": keys, **({} if between == usual else {"between": between})}


def _track_of(value: Any) -> Track | None:
    try:
        keys = tuple((float(frame), single(at_key)) for frame, at_key in value["keys"])
    except (TypeError, ValueError):
        return None
    return Track(value.get("between") or "linear", keys)


def _numbers(leaf: Leaf, shown: Any) -> tuple[float, ...]:
    if leaf.field.choices:
        return (float([str(choice.value) for choice in leaf.field.choices].index(shown)),)
    return tuple(map(float, shown)) if isinstance(shown, tuple) else (float(shown),)


def _value(leaf: Leaf, row: tuple[float, ...]) -> Any:
    if leaf.field.choices:
        i = min(max(int(row[0]), 0), len(leaf.field.choices) - 1)
        return leaf.field.choices[i].value
    if leaf.field.type == "bool":
        return row[0] >= 0.5
    if leaf.field.type in ("int32", "code"):
        return int(row[0])
    return tell(leaf, row if leaf.components > 1 else row[0])


def _read(curve: bpy.types.FCurve, leaf: Leaf) -> Track:
    points = sorted(curve.keyframe_points, key=lambda point: point.co.x)
    keys = tuple((float(point.co.x), float(point.co.y)) for point in points)
    between = _between(curve, points)
    usual = "step" if leaf.steps else "linear"
    rise = all(left < right for (left, _), (right, _) in zip(keys, keys[1:]))
    if between and rise and (not leaf.steps or between == "step"):
        return Track(between, keys)
    if len(keys) == 1:
        return Track(usual, keys)
    frames = range(math.floor(keys[0][0]), math.ceil(keys[-1][0]) + 1)
    return Track(usual, tuple((float(frame), float(curve.evaluate(frame))) for frame in frames))


def _between(curve: bpy.types.FCurve, points: list[bpy.types.Keyframe]) -> str:
    """How a document would say what lies between the keys; empty where it can't."""
    if len(curve.modifiers) or curve.extrapolation != "CONSTANT":
        return ""
    kinds = {point.interpolation for point in (points[:-1] or points)}
    if kinds == {"LINEAR"}:
        return "linear"
    if kinds == {"CONSTANT"}:
        return "step"
    return "smooth" if kinds == {"BEZIER"} and all(map(_is_smooth, points, points[1:])) else ""


def _is_smooth(left: bpy.types.Keyframe, right: bpy.types.Keyframe) -> bool:
    """Whether a stretch is 3 t² - 2 t³: its handles lie level, a third of the way from either end."""
    third = (right.co.x - left.co.x) / 3
    slack = 1e-3 * max(third, 1e-3)
    level = 1e-5 * max(1, abs(left.co.y), abs(right.co.y))
    return (
        abs(left.handle_right.x - left.co.x - third) < slack
        and abs(right.co.x - right.handle_left.x - third) < slack
        and abs(left.handle_right.y - left.co.y) < level
        and abs(right.handle_left.y - right.co.y) < level
    )


def _flatten(curve: bpy.types.FCurve) -> None:
    """Lays all handles level, a third of the way to the next key."""
    points = curve.keyframe_points
    for i, point in enumerate(points):
        x, y = point.co
        before = (x - points[i - 1].co.x) / 3 if i else 1
        behind = (points[i + 1].co.x - x) / 3 if i + 1 < len(points) else 1
        point.handle_left_type = point.handle_right_type = "FREE"
        point.handle_left, point.handle_right = (x - before, y), (x + behind, y)
