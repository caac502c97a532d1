"""Classes of shaders: fields, errors at the line that sets them, copies, and random records through the module."""

import copy
import inspect
import json
import pickle
import warnings

import numpy as np
import pytest
from conftest import run_command
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import fernwick
from fernwick import Color, GraphError, Keyed, Ramp, Weave


def test_a_class_for_each_shader_and_source():
    for name in fernwick.classes() + fernwick.sources():
        made = getattr(fernwick, name[0].upper() + name[1:])
        description = fernwick.describe(name)
        told = json.loads(run_command("describe", name, "--json"))
        assert [field.name for field in description.fields] == [field["name"] for field in told["fields"]]
        shader = made()
        for field in told["fields"]:
            default = field.get("default")
            assert shader[field["name"]] == (
                default if not isinstance(default, list) else description[field["name"]].default
            )
        settable = {field.name.split("[")[0].split(".")[0] for field in description.fields if not field.derived}
        parameters = {name.rstrip("_") for name in inspect.signature(made).parameters} - {"name"}
        assert parameters == settable
        assert description.purpose in made.__doc__
        assert description.fields[0].help in inspect.getdoc(vars(made)[next(iter(made._table.rows))])


def test_fields_by_keyword_attribute_element_and_address():
    weave = Weave(fRepeatU=np.int64(4), fWarpSubShader=Color("#c83c14"), fPattern=np.eye(5, dtype=bool))
    weave.fWarpWidth[2] = 8
    weave["fWeftWidth[1]"] = 3
    weave.fWeaveMode = "Free"
    assert weave.fWarpWidth == [1, 1, 8, 1, 1] and weave.fWarpWidth[-3] == 8 and weave.fRepeatV == 1
    assert weave.fPattern[1] == [False, True, False, False, False]
    assert all(slot is weave.fWarpSubShader[0] for slot in weave.fWarpSubShader)
    weave.fWarpSubShader[4] = None
    assert [shader for shader in weave.shaders] == [Color("#c83c14")]
    del weave.fWarpWidth
    assert weave.fWarpWidth == [1] * 5

    location = fernwick.Location(fAxes=[{"fEnabled": True}, {}, {"fEdgeA": 2}])
    location.fAxes[0].fEdgeB = 1.5
    assert location.fAxes[0].fEdgeB == 1.5 and location["fAxes[2].fEdgeA"] == 2 and not location.fAxes[1].fEnabled
    assert Ramp("v", from_=2) == Ramp(along=1, **{"from": 2}) != Ramp("u", from_=2)


def test_text_copies_and_pickles_are_equal():
    shared = Color("#c83c14", name="rust")
    weave = Weave(fWarpSubShader=shared, fWeftSubShader=[shared, Color((0.5, 0.25, 0))] + 3 * [None], fWeaveMode="Free")
    weave.fWarpWidth[0] = 8
    weave.fRepeatU = Keyed({1: 2, 24: 9}, "step")
    for other in (
        eval(repr(weave), vars(fernwick)), weave.copy(), copy.deepcopy(weave), pickle.loads(pickle.dumps(weave)),
        Weave(**weave.settings),
    ):  # fmt: skip
        assert other == weave and other is not weave
        other.fRepeatV = 3
        assert other != weave
    deep = copy.deepcopy(weave)
    assert deep.fWarpSubShader[0] is deep.fWeftSubShader[0] is not shared


@pytest.mark.parametrize(
    ("line", "error", "text"),
    [
        ("Weave(fRepeatU=1.5)", GraphError, "Weave.fRepeatU: expected an integer, got 1.5"),
        (
            "Weave(fRepetU=1)",
            TypeError,
            'Weave() got an unexpected keyword argument "fRepetU"; did you mean "fRepeatU"?',
        ),
        ("weave.fRepetU = 1", AttributeError, 'Weave has no field "fRepetU"; did you mean "fRepeatU"?'),
        ("weave['fWarpWidth[5]'] = 1", GraphError, "Weave.fWarpWidth[5]: there is no such field"),
        ("weave.fWarpWidth[5] = 1", IndexError, "fWarpWidth has 5 elements, and none 5"),
        (
            "weave.fWarpWidth = [1, 2]",
            GraphError,
            "Weave.fWarpWidth: expected an array of 5, each an integer, got [1,2]",
        ),
        ("weave.fWarpWidth = [1, 2, 'x', 4, 5]", GraphError, 'Weave.fWarpWidth[2]: expected an integer, got "x"'),
        ("weave.fGapSubShader = '#fff'", GraphError, "write fernwick.Color('#fff')"),
        ("weave.fGapSubShader = weave", GraphError, "Weave.fGapSubShader: the shader would plug in itself"),
        ("weave.fRepeatU = Keyed({1: 2, 5: 0.5})", GraphError, "Weave.fRepeatU: expected an integer, got 0.5"),
        ("weave.fProfileAlong = float('nan')", GraphError, "Weave.fProfileAlong: expected a number, got nan"),
        ("weave.fProfileAlong = object()", TypeError, "Weave.fProfileAlong: no graph holds a value of the type object"),
        ("weave.name = ''", GraphError, "Weave: name: expected a text that isn't empty"),
        (
            "fernwick.Fresnel(fPreset1=3)",
            GraphError,
            "Fresnel.fPreset1: the shader derives this field; it can't be set",
        ),
        ("fernwick.Checker(countU=0)", GraphError, "Checker.countU: expected an integer, 1 or more"),
        (
            "fernwick.Location().fAxes[0].fEdge = 1",
            AttributeError,
            'fAxes[0] has no field "fEdge"; did you mean "fEdgeB"?',
        ),
        ("Color((1, 2))", GraphError, "Color.color: expected"),
        ("Color(1, 2)", TypeError, "Color takes one field by position, color; got 2"),
        ("fernwick.Picture(np.zeros((2, 2, 5)))", GraphError, "Picture.file: expected an array of height x width"),
        (
            "fernwick.Picture(np.zeros((2, 2), int))",
            GraphError,
            "Picture.file: expected an array of uint8, uint16 or floats",
        ),
        ("fernwick.describe('Weeve')", KeyError, 'did you mean "Weave"?'),
        ("Keyed({2: 0, 1: 1})", GraphError, "keys: expected frames that rise, got [2, 1]"),
    ],
)
def test_a_wrong_value_is_told_of_where_it_is_set(line, error, text):
    weave = Weave(fRepeatU=2)
    before = weave.copy()
    with pytest.raises(error) as raised:
        exec(line, {**globals(), "weave": weave})
    assert text in str(raised.value)
    assert weave == before


FLOATS = st.floats(-100, 100, width=32)
BY_TYPE = {
    "float": FLOATS,
    "int32": st.integers(-5, 200),
    "bool": st.booleans(),
    "code": st.sampled_from(["FREE", "ABCD"]),
    "vector2": st.tuples(FLOATS, FLOATS),
    "vector3": st.tuples(FLOATS, FLOATS, FLOATS),
    "rgb": st.tuples(FLOATS, FLOATS, FLOATS),
    "rgba": st.tuples(FLOATS, FLOATS, FLOATS, FLOATS),
    "string": st.text(max_size=20).filter(lambda text: "\0" not in text),
    "shader": st.sampled_from([None, Color("#c83c14"), fernwick.Value(0.3), Ramp("v"), fernwick.Surface("#222")]),
    "colors": st.lists(st.tuples(FLOATS, FLOATS, FLOATS), min_size=2, max_size=4),
    "file": st.just("picture.png"),
}


def values_of(field):
    if field.choices:
        return st.sampled_from([text for choice in field.choices for text in (choice.value, choice.label)])
    if field.minimum is not None and not field.loose:
        type_of = int if field.type == "int32" else float
        least, most = (None if bound is None else type_of(bound) for bound in (field.minimum, field.maximum))
        return BY_TYPE[field.type].map(lambda number: max(least, number if most is None else min(number, most)))
    return BY_TYPE[field.type]


@st.composite
def shaders(draw):
    """A shader of any class with some of its fields set."""
    name = draw(st.sampled_from(fernwick.classes() + fernwick.sources()).filter(lambda name: name != "picture"))
    fields = [field for field in fernwick.describe(name).fields if not field.derived]
    chosen = draw(st.lists(st.sampled_from(fields), max_size=8, unique_by=lambda field: field.name))
    shader = getattr(fernwick, name[0].upper() + name[1:])()
    for field in chosen:
        shader[field.name] = draw(values_of(field))
    return shader


@settings(max_examples=120, suppress_health_check=list(HealthCheck))
@given(shader=shaders())
def test_random_records_go_through_the_module(shader):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        assert eval(repr(shader), vars(fernwick)) == shader
        assert pickle.loads(pickle.dumps(shader)) == shader
        graph = fernwick.Graph(shader)
        again = fernwick.Graph(json.loads(json.dumps(graph.to_dict())))
        assert again == graph and fernwick.Graph(graph.to_json()) == graph
        mine, other = (each.bake(6, 4, graph.outputs) for each in (graph, again))
        for output, picture in mine.items():
            assert picture.shape[:2] == (4, 6)
            assert picture.tobytes() == other[output].tobytes()


@settings(max_examples=6, suppress_health_check=list(HealthCheck))
@given(shader=shaders())
def test_random_records_shade_as_in_the_command(tmp_path, shader):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        graph = fernwick.Graph(shader)
        output = graph.outputs[0]
        graph.save(tmp_path / "graph.json")
        path = tmp_path / "picture.exr"
        run_command("bake", tmp_path / "graph.json", "--output", output, "--size", "9x7", "--straight", "-o", path)
        mine, wanted = graph.bake(9, 7, output), fernwick.load_picture(path)
        if mine.ndim == 2:
            wanted = wanted[..., 0]
        assert np.array_equal(mine, wanted, equal_nan=True)


def test_views_copy_and_pickle_with_their_shader():
    where = fernwick.Location(fAxes=[{"fEnabled": True, "fEdgeB": 2}, {}, {}])
    for view in (where.fAxes, where.fAxes[0]):
        assert copy.copy(view) == copy.deepcopy(view) == pickle.loads(pickle.dumps(view)) == view
