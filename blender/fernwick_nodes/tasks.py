"""Work in steps: what touches Blender's data runs where it is called, the rest in a thread beside.

A task is a generator. It yields functions of a progress, gets what they return, and returns the result.
"""

from __future__ import annotations

import threading
from collections.abc import Callable, Generator
from typing import Any, TypeVar

import bpy

from . import messages

Result = TypeVar("Result")
Step = Callable[[Callable[[float], None]], Any]
Task = Generator[Step, Any, Result]


class Stopped(Exception):
    """Is thrown into work that nobody wants any more."""


def run(task: Task[Result], progress: Callable[[float], object] | None = None) -> Result:
    """Does all of a task at once."""
    answer = None
    while True:
        try:
            step = task.send(answer)
        except StopIteration as end:
            return end.value  # type: ignore[no-any-return]
        answer = step(progress if progress is not None else lambda share: None)  # type: ignore[arg-type]


_running: set[Runner] = set()


def stop_all() -> None:
    """When the operators that look after them go."""
    for runner in list(_running):
        runner.stop()


class Runner:
    """Does a task bit by bit: `advance` returns soon, and is called again until it returns True."""

    def __init__(self, task: Task[Any]) -> None:
        self.result: Any = None
        self.share = 0.0
        self._task = task
        self._stop = threading.Event()
        self._thread: threading.Thread | None = None
        self._answer: Any = None
        self._error: BaseException | None = None
        _running.add(self)

    def advance(self) -> bool:
        """Raises what the task raises."""
        try:
            is_done = self._advance()
        except BaseException:
            _running.discard(self)
            raise
        if is_done:
            _running.discard(self)
        return is_done

    def _advance(self) -> bool:
        if self._thread is not None:
            if self._thread.is_alive():
                return False
            self._thread = None
            if self._error is not None:
                raise self._error
        try:
            step = self._task.send(self._answer)
        except StopIteration as end:
            self.result = end.value
            return True
        self._thread = threading.Thread(target=self._run, args=(step,), name="fernwick task", daemon=True)
        self._thread.start()
        return False

    def stop(self) -> None:
        """Ends the work; waits for the thread."""
        _running.discard(self)
        self._stop.set()
        if self._thread is not None:
            self._thread.join()
        self._task.close()

    def _run(self, step: Step) -> None:
        try:
            self._answer = step(self._progress)
        except BaseException as error:  # for the main thread
            self._error = error

    def _progress(self, share: float) -> None:
        self.share = share
        if self._stop.is_set():
            raise Stopped


class TaskOperator:
    """An operator whose task goes on while the interface stays awake; Esc ends it."""

    _runner: Runner | None = None

    def task(self, context: bpy.types.Context) -> Task[list[str]]:
        """Returns what is reported in the end: what was done, and behind it what there is to say of that."""
        raise NotImplementedError

    def execute(self, context: bpy.types.Context) -> set[str]:
        try:
            self._tell(run(self.task(context)))
        except Exception as error:
            return self._fail(error)
        return {"FINISHED"}

    def invoke(self, context: bpy.types.Context, event: bpy.types.Event) -> set[str]:
        if bpy.app.background or context.window is None:
            return self.execute(context)
        self._runner = Runner(self.task(context))
        self._timer = context.window_manager.event_timer_add(0.05, window=context.window)
        context.window_manager.progress_begin(0, 100)
        context.window_manager.modal_handler_add(self)
        return {"RUNNING_MODAL"}

    def modal(self, context: bpy.types.Context, event: bpy.types.Event) -> set[str]:
        if event.type == "ESC":
            self._end(context)
            self.report({"INFO"}, "Stopped")  # type: ignore[attr-defined]
            return {"CANCELLED"}
        if event.type != "TIMER" or self._runner is None:
            return {"PASS_THROUGH"}
        try:
            is_done = self._runner.advance()
        except Exception as error:
            self._end(context)
            return self._fail(error)
        context.window_manager.progress_update(self._runner.share * 100)
        if not is_done:
            return {"PASS_THROUGH"}
        texts = self._runner.result
        self._end(context)
        self._tell(texts)
        return {"FINISHED"}

    def cancel(self, context: bpy.types.Context) -> None:
        self._end(context)

    def _end(self, context: bpy.types.Context) -> None:
        context.window_manager.event_timer_remove(self._timer)
        context.window_manager.progress_end()
        if self._runner is not None:
            self._runner.stop()
            self._runner = None

    def _tell(self, texts: list[str]) -> None:
        self.report({"WARNING" if len(texts) > 1 else "INFO"}, ". ".join(texts))  # type: ignore[attr-defined]

    def _fail(self, error: BaseException) -> set[str]:
        self.report({"ERROR"}, messages.explained(error))  # type: ignore[attr-defined]
        return {"CANCELLED"}
