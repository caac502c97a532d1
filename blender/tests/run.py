"""Runs all tests in Blender: blender -b --factory-startup --python-exit-code 1 -P run.py -- ZIP COMMAND

The add-on is installed from its zip, as users install it. Names behind the two choose tests, as of unittest.
"""

import sys
import time
import traceback
import unittest
from pathlib import Path

import bpy

FOLDER = Path(__file__).parent
sys.path.insert(0, str(FOLDER))
ZIP, COMMAND, *CHOSEN = sys.argv[sys.argv.index("--") + 1 :]


def install() -> None:
    bpy.ops.preferences.addon_install(filepath=ZIP)
    bpy.ops.preferences.addon_enable(module="fernwick_nodes")
    import fernwick
    import fernwick_nodes

    assert Path(fernwick_nodes.__file__).is_relative_to(bpy.utils.user_resource("SCRIPTS")), fernwick_nodes.__file__
    assert Path(fernwick.__file__).is_relative_to(bpy.utils.user_resource("DATAFILES")), fernwick.__file__


class Result(unittest.TextTestResult):
    def startTest(self, test: unittest.TestCase) -> None:
        super().startTest(test)
        self._start = time.perf_counter()

    def stopTest(self, test: unittest.TestCase) -> None:
        super().stopTest(test)
        print(f"{time.perf_counter() - self._start:6.2f} s  {test.id()}", flush=True)


def main() -> None:
    install()
    loader = unittest.TestLoader()
    suite = loader.loadTestsFromNames(CHOSEN) if CHOSEN else loader.discover(str(FOLDER), "test_*.py")
    result = unittest.TextTestRunner(stream=sys.stdout, resultclass=Result).run(suite)
    failed = len({getattr(test, "test_case", test).id() for test, _ in result.failures + result.errors})
    print(f"{result.testsRun - failed} passed, {failed} failed", flush=True)
    if failed or result.testsRun == 0:
        sys.exit(1)


try:
    main()
except Exception:  # or Blender would go on
    traceback.print_exc()
    sys.exit(1)
