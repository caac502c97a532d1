"""What the command line tells while it works."""

from __future__ import annotations

import logging
import sys
import time


def tell(text: str) -> None:
    print(f"\r\033[Kfernwick: {text}" if sys.stderr.isatty() else f"fernwick: {text}", file=sys.stderr)


class Teller(logging.Handler):
    def emit(self, record: logging.LogRecord) -> None:
        tell(record.getMessage())


class Bar:
    """A line on the terminal that shows how far the work is, as the command has it."""

    def __init__(self, label: str) -> None:
        self._label = label
        self._is_shown = sys.stderr.isatty()
        self._percent = -1
        self._begun = time.monotonic()

    def __enter__(self) -> Bar:
        self.show(0)
        return self

    def __exit__(self, *_: object) -> None:
        if self._is_shown:
            print("\r\033[K", end="", file=sys.stderr, flush=True)

    def show(self, share: float) -> None:
        percent = int(share * 100)
        if not self._is_shown or percent == self._percent:
            return
        self._percent = percent
        passed = time.monotonic() - self._begun
        left = int(passed * (1 - share) / share + 0.5) if share > 0 and passed >= 1 else None
        time_left = (
            "" if left is None else f", {left} s left" if left < 60 else f", {left // 60} min {left % 60} s left"
        )
        filled = "=" * (percent * 40 // 100)
        print(f"\r[{filled:40}] {percent:3} %  {self._label}{time_left}\033[K", end="", file=sys.stderr, flush=True)
