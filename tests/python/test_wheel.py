"""The wheel in virtual environments, without a network."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

BUILD = Path(os.environ.get("FERNWICK_BUILD", ""))
pytestmark = [
    pytest.mark.skipif(not BUILD.name, reason="FERNWICK_BUILD names no build"),
    pytest.mark.skipif("FERNWICK_SANITIZED" in os.environ, reason="wheels are of release builds"),
]


def run(*command, **variables):
    bare = {"PATH": os.environ["PATH"], "HOME": os.environ.get("HOME", "/"), **variables}
    answer = subprocess.run([str(word) for word in command], env=bare, capture_output=True, text=True, check=False)
    assert answer.returncode == 0, answer.stdout + answer.stderr
    return answer.stdout.strip()


@pytest.fixture(scope="module")
def wheel(tmp_path_factory):
    folder = tmp_path_factory.mktemp("wheel")
    run(Path(os.environ["FERNWICK_SOURCE"]) / "scripts/wheel", folder, BUILD.name)
    (made,) = folder.glob("fernwick-*.whl")
    return made


def install(wheel, folder, *options):
    run(sys.executable, "-m", "venv", *options, folder)
    run(folder / "bin/pip", "install", "--no-index", "--disable-pip-version-check", wheel)
    return folder / "bin/python"


def test_an_empty_environment_gets_the_library_along(wheel, tmp_path):
    python = install(wheel, tmp_path / "bare")
    program = """
import fernwick
weave = fernwick.Weave(fRepeatU=4)
print(len(fernwick.classes()), fernwick.Graph(weave).outputs[0], fernwick.describe("Corners").fields[0].default)
print(fernwick.library())
try:
    fernwick.Graph(weave).bake(4)
except ImportError as error:
    print(error)
"""
    told, library, error = run(python, "-c", program).splitlines()
    assert told.startswith("19 color ")
    assert Path(library).is_relative_to(tmp_path)
    assert "NumPy" in error


def test_with_the_systems_numpy_it_bakes(wheel, tmp_path):
    python = install(wheel, tmp_path / "venv", "--system-site-packages")
    program = "import fernwick; print(fernwick.Graph(fernwick.Color('#ffffff')).bake(2).tolist())"
    assert run(python, "-c", program) == str([[[1.0] * 4] * 2] * 2)
