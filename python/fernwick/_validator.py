"""`python -m fernwick._validator`: what `fernwick.validate` runs in a process of its own, one that has a single thread.

Takes a JSON object on stdin, and prints a line of JSON for each check: its findings, or what is wrong.
"""

from __future__ import annotations

import json
import sys

from . import _native


def main() -> None:
    asked = json.load(sys.stdin)
    checks = asked.pop("checks")
    for check in ["", *checks]:  # the first looks whether the library can be loaded
        try:
            findings = _native.validate(check=check, **asked)
            answer: object = findings if check else None
        except _native.LibraryError as error:
            answer = str(error)
        print(json.dumps(answer), flush=True)


if __name__ == "__main__":
    main()
