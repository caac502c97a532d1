#!/usr/bin/env python3
"""Makes the pictures of docs/python.md: runs its blocks, and the contact sheet. With the package on PYTHONPATH."""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
FOLDER = Path(__file__).resolve().parent
ROOT = FOLDER.parents[1]


def main() -> None:
    guide = (FOLDER.parent / "python.md").read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory() as made:
        os.chdir(made)
        exec("".join(re.findall(r"^```python\n(.*?)^```$", guide, re.M | re.S)), {"__name__": "__guide__"})
        subprocess.run([sys.executable, ROOT / "examples/python/contact_sheet.py", made], cwd=ROOT, check=True)
        for name in sorted(set(re.findall(r"\(python/(\S+\.png)\)", guide))):
            (FOLDER / name).write_bytes(Path(name).read_bytes())
            print(f"{name}: {(FOLDER / name).stat().st_size / 1024:.0f} KiB")


if __name__ == "__main__":
    main()
