"""Triangle meshes from arrays or files."""

from __future__ import annotations

from collections.abc import Sequence
from typing import TYPE_CHECKING, Any

from . import _arguments, _native
from ._numpy import floats, frozen, indices, is_array, numpy, own, text
from ._pixels import digest

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import ArrayLike, NDArray

    Floats = NDArray[np.float32]


class Mesh:
    """Triangles, for shapes of scenes and to bake onto. Never changes; its arrays are read-only.

    :param vertices: (n, 3), in units of the scene, Y up
    :param triangles: (m, 3), indices of vertices, counterclockwise as seen from the front
    :param uvs: (n, 2), one a vertex, or (m, 3, 2), one a corner of each triangle; a list of such arrays for several sets.
        Without any, U and V are the place in the bounding box along X and Y
    :param normals: (n, 3) or (m, 3, 3); without any, triangles are flat

    Vertices whose corners differ are split, so that a mesh may have more of them than were given.
    Raises ValueError and TypeError for wrong shapes and types, indices beyond the vertices, and numbers that aren't
    finite.
    """

    __slots__ = ("_vertices", "_triangles", "_uvs", "_normals", "_handle", "_token")
    __hash__ = None  # type: ignore[assignment]
    _vertices: Floats
    _triangles: NDArray[np.uint32]
    _uvs: tuple[Floats, ...]
    _normals: Floats | None
    _handle: _native.Mesh
    _token: str | None

    def __init__(
        self,
        vertices: ArrayLike,
        triangles: ArrayLike,
        uvs: ArrayLike | Sequence[ArrayLike] | None = None,
        normals: ArrayLike | None = None,
    ) -> None:
        points = floats("vertices", vertices, 3)
        if points.ndim != 2:
            raise ValueError(f"vertices: expected an array of shape (n, 3), got {text(points)}")
        corners = indices("triangles", triangles)
        if len(corners) and int(corners.max()) >= len(points):
            raise ValueError(f"triangles: expected indices below {len(points)}, got {corners.max()}")
        several = isinstance(uvs, (list, tuple)) and any(is_array(each) and each.ndim > 1 for each in uvs)
        sets: list[Any] = [] if uvs is None else list(uvs) if several else [uvs]  # type: ignore[arg-type]
        columns = [
            _per_vertex(f"uvs[{i}]" if several else "uvs", each, points, corners, 2) for i, each in enumerate(sets)
        ]
        if normals is not None:
            columns.append(_per_vertex("normals", normals, points, corners, 3))
        points, corners, columns = _split(points, corners, columns)
        self._take(points, corners, columns[: len(sets)], None if normals is None else columns[-1])

    @classmethod
    def load(cls, path: _arguments.PathLike, up: str = "Y", scale: float = 1) -> Mesh:
        """All meshes of a glTF, OBJ or other file as one. Raises ModelError.

        :param up: the axis that points up in the file, "Y" or "Z"
        :param scale: a factor of its lengths
        """
        z_up = _arguments.choice("up", up, ("Y", "Z")) == "Z"
        factor = _arguments.number("scale", scale, 0, above=True)
        native = _native.Mesh.read(_arguments.path("path", path), z_up, factor)
        mesh = cls.__new__(cls)
        mesh._take(native.points, native.triangles, native.uvs, native.normals)
        return mesh

    @property
    def vertices(self) -> Floats:
        """(n, 3)"""
        return self._vertices

    @property
    def triangles(self) -> NDArray[np.uint32]:
        """(m, 3), indices of vertices"""
        return self._triangles

    @property
    def uvs(self) -> tuple[Floats, ...]:
        """Sets of (n, 2); none where the place in the bounding box stands in."""
        return self._uvs

    @property
    def normals(self) -> Floats | None:
        """(n, 3), or None for flat triangles"""
        return self._normals

    @property
    def bounds(self) -> Floats:
        """(2, 3): the least and the greatest coordinates."""
        np = numpy()
        return np.stack([self._vertices.min(axis=0), self._vertices.max(axis=0)])  # type: ignore[no-any-return]

    @property
    def token(self) -> str:
        """What documents call the mesh: the same for the same arrays."""
        if self._token is None:
            extra = () if self._normals is None else (self._normals,)
            self._token = f"mesh:{digest(self._vertices, self._triangles, *self._uvs, *extra)}"
        return self._token

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Mesh):
            return NotImplemented
        if len(self._uvs) != len(other._uvs) or (self._normals is None) != (other._normals is None):
            return False
        mine, yours = ((m._vertices, m._triangles, *m._uvs, m._normals) for m in (self, other))
        equal = numpy().array_equal
        return all(left is right or equal(left, right) for left, right in zip(mine, yours))

    def __reduce__(self) -> tuple[Any, ...]:
        return _remake, (self._vertices, self._triangles, self._uvs, self._normals)

    def __repr__(self) -> str:
        sets = f"{len(self._uvs)} UV set{'' if len(self._uvs) == 1 else 's'}" if self._uvs else "no UV"
        normals = "flat" if self._normals is None else "normals"
        return f"<Mesh: {len(self._vertices)} vertices, {len(self._triangles)} triangles, {sets}, {normals}>"

    def _take(self, points: Any, corners: Any, uvs: Any, normals: Any) -> None:
        self._vertices = own(points)
        self._triangles = own(corners)
        self._uvs = tuple(own(each) for each in uvs)
        self._normals = None if normals is None else own(normals)
        self._handle = _native.Mesh(self._vertices, self._triangles, list(self._uvs), self._normals)
        self._token = None


def _remake(points: Any, corners: Any, uvs: Any, normals: Any) -> Mesh:
    mesh = Mesh.__new__(Mesh)
    mesh._take(points, corners, uvs, normals)
    return mesh


def _per_vertex(name: str, given: object, points: Any, corners: Any, columns: int) -> Any:
    """Numbers by vertex (n, columns), or by corner (m, 3, columns)."""
    array = floats(name, given, columns)
    if array.shape not in ((len(points), columns), (*corners.shape, columns)):
        raise ValueError(
            f"{name}: expected an array of shape {(len(points), columns)} or {(*corners.shape, columns)}, "
            f"got {text(array)}"
        )
    return array


def _split(points: Any, corners: Any, columns: list[Any]) -> tuple[Any, Any, list[Any]]:
    """The same triangles with all columns by vertex; corners that agree in everything share one."""
    np = numpy()
    if all(column.ndim == 2 for column in columns):
        return points, corners, columns
    identity = corners.reshape(-1).astype(np.uint64)  # of each corner among all
    for column in columns:
        if column.ndim == 3:
            rows = np.ascontiguousarray(column.reshape(-1, column.shape[2]))
            _, which = np.unique(rows.view(f"V{rows.itemsize * rows.shape[1]}").reshape(-1), return_inverse=True)
            _, identity = np.unique(identity * np.uint64(len(rows) + 1) + which.astype(np.uint64), return_inverse=True)
            identity = identity.astype(np.uint64)
    _, first, which = np.unique(identity, return_index=True, return_inverse=True)
    vertex = corners.reshape(-1)[first]
    split = [column[vertex] if column.ndim == 2 else column.reshape(-1, column.shape[2])[first] for column in columns]
    return points[vertex], frozen(which.astype(np.uint32).reshape(-1, 3)), split
