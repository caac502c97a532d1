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
    # The name of an argument or a shader, as in `cloth.fRepeatU: expected`, stays as it is.
    return text[:1].upper() + text[1:] if text.partition(" ")[0].isalpha() else text
