"""What is wrong, in words for the interface."""

from __future__ import annotations


class Refusal(Exception):
    """Something that can't be done as asked; its text is a sentence for the user."""


class BakeWarning(UserWarning):
    """What a bake left out, or what its shaders reported."""


def sentence(error: BaseException) -> str:
    """The text of an error as one line."""
    text = " ".join(str(error).split()) or type(error).__name__
    if isinstance(error, MemoryError):
        text = "There isn't enough memory for that"
    return text[:1].upper() + text[1:]
