"""Finds the built package and command: FERNWICK_PYTHON_PATH and FERNWICK_COMMAND, or the release build."""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
PACKAGE = Path(os.environ.get("FERNWICK_PYTHON_PATH", ROOT / "build/release/python")).resolve()
COMMAND = Path(os.environ.get("FERNWICK_COMMAND", ROOT / "build/release/tools/fernwick")).resolve()
EXAMPLES = ROOT / "examples"

sys.path.insert(0, str(PACKAGE))
sys.dont_write_bytecode = True  # the tree stays as it is
os.environ |= {"PYTHONPATH": str(PACKAGE), "PYTHONDONTWRITEBYTECODE": "1"}  # of the processes that tests start

import fernwick  # noqa: E402
from hypothesis import configuration, settings  # noqa: E402

configuration.set_hypothesis_home_dir(tempfile.mkdtemp(prefix="fernwick-"))
settings.register_profile("fernwick", deadline=None, derandomize=True, database=None)
settings.load_profile("fernwick")


@pytest.fixture(autouse=True, scope="session")
def _same_library() -> None:
    """The command and the package load the same build."""
    os.environ["FERNWICK_LIBRARY"] = str(fernwick.library())


def run_command(*arguments: object) -> str:
    """What the command prints."""
    environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}  # it has its own
    made = subprocess.run(
        [COMMAND, *map(str, arguments)], capture_output=True, text=True, cwd=EXAMPLES, env=environment
    )
    assert made.returncode == 0, made.stderr
    return made.stdout


def run_python(program: str, *, ok: bool = True) -> subprocess.CompletedProcess[str]:
    """A program in a process of its own."""
    made = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, cwd=EXAMPLES, timeout=60)
    assert not ok or made.returncode == 0, made.stderr
    return made
