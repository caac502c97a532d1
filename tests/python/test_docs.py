"""The guide's examples run, and types are what they say."""

import os
import re
import runpy
import subprocess
import sys
from pathlib import Path

import matplotlib
import pytest
from conftest import PACKAGE, ROOT

matplotlib.use("Agg")
GUIDE = ROOT / "docs/python.md"
PROGRAMS = sorted((ROOT / "examples/python").glob("*.py"))


def blocks():
    """The guide's Python in order, each with its line."""
    text = GUIDE.read_text()
    for found in re.finditer(r"^```python\n(.*?)^```$", text, re.M | re.S):
        yield text[: found.start()].count("\n") + 1, found[1]


def test_the_guide_runs_from_top_to_bottom(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    (tmp_path / "examples").symlink_to(ROOT / "examples")
    names = {"__name__": "__guide__"}
    for line, block in blocks():
        code = compile("\n" * line + block, str(GUIDE), "exec")
        exec(code, names)
    for picture in re.findall(r"\((python/\S+\.png)\)", GUIDE.read_text()):
        assert (GUIDE.parent / picture).is_file()


@pytest.mark.parametrize("program", PROGRAMS, ids=lambda path: path.stem)
def test_examples_run(program, tmp_path, monkeypatch):
    monkeypatch.chdir(ROOT)
    monkeypatch.setattr(sys, "argv", [str(program), str(tmp_path)])
    runpy.run_path(str(program), run_name="__main__")
    assert list(tmp_path.iterdir())


def test_types_are_strict(tmp_path):
    guide = tmp_path / "guide.py"
    guide.write_text("".join(block for _, block in blocks()))
    wrong = tmp_path / "wrong.py"
    wrong.write_text(
        'import fernwick\nfernwick.Weave(fRepeatU="x")\nfernwick.Weave().fRepetU = 1\nfernwick.Color(colour=1)\n'
    )

    def check(*files):
        cache = os.environ.get("FERNWICK_MYPY_CACHE", str(tmp_path / "cache"))
        command = [sys.executable, "-m", "mypy", "--strict", "--ignore-missing-imports", "--cache-dir", cache]
        made = subprocess.run(
            [*command, *map(str, files)],
            capture_output=True,
            text=True,
            cwd=tmp_path,
            env={**os.environ, "MYPYPATH": str(PACKAGE)},
        )
        return made.stdout

    assert "Success" in check(PACKAGE / "fernwick", *PROGRAMS, guide)
    assert re.findall(r"wrong.py:(\d): error", check(wrong)) == ["2", "3", "4"]
    assert Path(PACKAGE, "fernwick/_shaders.pyi").is_file()
