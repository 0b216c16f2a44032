"""What the library refuses, as one exception."""

from __future__ import annotations

from typing import Optional


class Error(ValueError):
    """An argument that an operation cannot take.

    Exhausted memory is a `MemoryError` instead.

    Attributes:
        function: name of the operation.
        code: negative result of the library; None if the argument was refused before the library saw it.
        argument: name of the argument.
        reason: what is wrong with it.
    """

    function: str
    code: Optional[int]
    argument: str
    reason: str

    def __init__(self, function: str, code: Optional[int], argument: str, reason: str) -> None:
        super().__init__(function, code, argument, reason)
        self.function = function
        self.code = code
        self.argument = argument
        self.reason = reason

    def __str__(self) -> str:
        result = "" if self.code is None else f" (code {self.code})"
        return f"{self.function}: {self.argument}: {self.reason}{result}"
