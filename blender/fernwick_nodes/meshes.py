"""Evaluated objects of Blender as meshes of the shaders."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import TYPE_CHECKING, Any

import bpy
import numpy as np
from mathutils import Matrix

from .errors import Refusal

if TYPE_CHECKING:
    import fernwick
    from numpy.typing import NDArray

HAVE_MESHES = {"MESH", "CURVE", "SURFACE", "META", "FONT"}
_COLUMNS, _ROWS = 10, 900  # of tiles, from 1001 on


@dataclass
class Arrays:
    """What Blender knows of a mesh, copied, in the coordinates of its object: another thread may go on with it."""

    points: NDArray[np.float32]  # by loop, that is by corner of a face
    normals: NDArray[np.float32]
    corners: NDArray[np.int32]  # (m, 3), loops of triangles
    faces: NDArray[np.int32]  # (m,), of which a triangle is part
    uvs: list[NDArray[np.float32]] = field(default_factory=list)  # the one that lays pictures out is the first
    name: str = ""  # of the object, for messages

    def scaled(self, linear: NDArray[np.float64]) -> Arrays:
        """The same in coordinates without scale; normals have any length.

        :param linear: (3, 3), takes points there; the unit matrix leaves every bit as it is
        """
        if np.array_equal(linear, np.eye(3)):
            return self
        points = (self.points.astype(np.float64) @ linear.T).astype(np.float32)
        normals = (self.normals.astype(np.float64) @ np.linalg.inv(linear)).astype(np.float32)
        # Mirrored triangles are turned over, or their fronts would be inside.
        corners = self.corners[:, ::-1] if np.linalg.det(linear) < 0 else self.corners
        return Arrays(points, normals, corners, self.faces, self.uvs, self.name)

    def mesh(self, linear: NDArray[np.float64]) -> fernwick.Mesh:
        """The mesh in coordinates without scale, as a model's file with these numbers would be read.

        Raises Refusal where some of the numbers are none.
        """
        import fernwick

        made = self.scaled(linear)
        for what, several in (("coordinates", [made.points]), ("normals", [made.normals]), ("UV", made.uvs)):
            for numbers in several:
                bad = ~np.isfinite(numbers).all(axis=1)
                if bad.any():
                    count = len(np.unique(made.faces[bad[made.corners].any(axis=1)]))
                    raise Refusal(f'"{self.name}" has {what} that are no numbers, at {count} of its faces: mend these')
        # A vertex a corner: the host joins those of one place by itself.
        return fernwick.Mesh(made.points, made.corners, made.uvs or None, _unit(made.normals))

    def left_out(self, width: int, height: int) -> str:
        """What there is to say of faces that lie on no picture; empty without any.

        :param width, height: of a tile's picture, in pixels
        """
        if not self.uvs:
            return ""
        places = self.uvs[0] * np.array((width, height), np.float32)
        # What reaches less than to the middle of the first pixel covers nothing there.
        inside = (places > -0.5) & (places < np.array((_COLUMNS * width, _ROWS * height)) + 0.5)
        outside = ~inside.all(axis=1)[self.corners].all(axis=1)
        if not outside.any():
            return ""
        count, total = len(np.unique(self.faces[outside])), len(np.unique(self.faces))
        return (
            f'{count} of {total} faces of "{self.name}" are left out, wholly or in part: their UV lie outside of the '
            f"tiles. Move them to U from 0 to {_COLUMNS} and V from 0 up"
        )


def _unit(vectors: NDArray[np.float32]) -> NDArray[np.float32]:
    """Makes the lengths 1 as the host does it, to the bit: by a factor in single precision."""
    wide = vectors.astype(np.float64)
    length = np.sqrt(wide[:, 0] * wide[:, 0] + wide[:, 1] * wide[:, 1] + wide[:, 2] * wide[:, 2]).astype(np.float32)
    factor = np.divide(np.float32(1), length, out=np.ones_like(length), where=length > 0)
    return vectors * factor[:, None]  # type: ignore[no-any-return]


def rigid(matrix: Matrix) -> tuple[tuple[float, ...], tuple[float, ...], NDArray[np.float64]]:
    """Position, rotation in degrees about X, then Y, then Z, and what is left: scale and shear as a (3, 3) matrix."""
    location, rotation, _ = matrix.decompose()
    turned = np.array(rotation.to_matrix(), np.float64)
    linear = turned.T @ np.array(matrix.to_3x3(), np.float64)
    if np.allclose(linear, np.eye(3), rtol=0, atol=2e-6):
        linear = np.eye(3)
    angles = tuple(float(np.degrees(angle)) for angle in rotation.to_euler("XYZ"))
    return tuple(location), angles, linear


def rigid_of(evaluated: bpy.types.Object) -> tuple[tuple[float, ...], tuple[float, ...], NDArray[np.float64]]:
    """The same of an object. Raises Refusal where its place is no number."""
    if not np.isfinite(np.array(evaluated.matrix_world)).all():
        raise Refusal(f'The place, rotation or scale of "{evaluated.name}" is no number')
    return rigid(evaluated.matrix_world)


_kept: dict[tuple[str, str], Arrays] = {}
_KEPT = 4  # meshes at most


def kept_arrays_of(thing: bpy.types.Object, depsgraph: bpy.types.Depsgraph, uv_layer: str = "") -> Arrays:
    """The same as of the last call, unless `forget` was called since. With UV."""
    key = (thing.name_full, uv_layer)
    if key not in _kept:
        while len(_kept) >= _KEPT:
            del _kept[next(iter(_kept))]
        _kept[key] = arrays_of(thing, depsgraph, uv_layer, need_uv=True)
    return _kept[key]


def forget() -> None:
    """When any mesh may have changed."""
    _kept.clear()


def arrays_of(
    thing: bpy.types.Object, depsgraph: bpy.types.Depsgraph, uv_layer: str = "", need_uv: bool = False
) -> Arrays:
    """The evaluated mesh of an object, modifiers applied. Raises Refusal where it has no faces or, if needed, no UV.

    :param uv_layer: the set of UV that comes first; without a name the one that Blender renders with
    """
    if thing.type not in HAVE_MESHES:
        raise Refusal(f'"{thing.name}" is no mesh')
    evaluated = thing.evaluated_get(depsgraph)
    mesh = evaluated.to_mesh()
    try:
        if mesh is None or not mesh.polygons:
            raise Refusal(f'"{thing.name}" has no faces')
        return _copy(thing, mesh, uv_layer, need_uv)
    finally:
        evaluated.to_mesh_clear()


def active_uv(thing: bpy.types.Object) -> str:
    """The set of UV that Blender renders an object with; empty without any."""
    layers = getattr(thing.data, "uv_layers", ())
    return next((layer.name for layer in layers if layer.active_render), "")


def unwrapping(thing: bpy.types.Object) -> str:
    """How an object gets a UV map."""
    return "unwrap it first (Edit Mode, U)" if thing.type == "MESH" else "convert it to a mesh, and unwrap that"


def _copy(thing: bpy.types.Object, mesh: bpy.types.Mesh, uv_layer: str, need_uv: bool) -> Arrays:
    name = thing.name
    if uv_layer and uv_layer not in mesh.uv_layers:
        raise Refusal(f'"{name}" has no UV map "{uv_layer}"')
    if need_uv and not mesh.uv_layers:
        raise Refusal(f'"{name}" has no UV map: {unwrapping(thing)}')
    if not hasattr(mesh, "corner_normals"):  # before Blender 4.1
        mesh.calc_normals_split()
    mesh.calc_loop_triangles()
    # Only now: what is found of a mesh before its normals are computed points to what is no more.
    layers = sorted(mesh.uv_layers, key=lambda layer: layer.name != uv_layer if uv_layer else not layer.active_render)
    has_normals = hasattr(mesh, "corner_normals")
    of_loop = _read(mesh.loops, "vertex_index", 1, np.int32)[:, 0]
    return Arrays(
        _read(mesh.vertices, "co", 3, np.float32)[of_loop],
        _read(mesh.corner_normals if has_normals else mesh.loops, "vector" if has_normals else "normal", 3, np.float32),
        _read(mesh.loop_triangles, "loops", 3, np.int32),
        _read(mesh.loop_triangles, "polygon_index", 1, np.int32)[:, 0],
        [_read(layer.data, "uv", 2, np.float32) for layer in layers],
        name,
    )


def _read(collection: Any, attribute: str, columns: int, dtype: Any) -> Any:
    flat = np.empty(len(collection) * columns, dtype)
    collection.foreach_get(attribute, flat)
    return flat.reshape(-1, columns)
