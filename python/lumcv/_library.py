"""Finds and loads the library, and says what its statuses mean."""

from __future__ import annotations

import ctypes
import ctypes.util
import os
import threading
from typing import Optional, Tuple, Type

from ._table import CONSTANTS

STATUSES = {value: (name, about) for name, (value, about) in CONSTANTS.items() if name.startswith(("lumErr", "lumWrn"))}
SONAME = "liblumcv.so.0"


class LumcvError(Exception):
    """A call was refused: nothing has been written.

    `status` is the number, `name` the name of the status, `meaning` what it says in general, and `function` the export;
    what it says for this function stands in the function's docstring.
    """

    def __init__(self, function: str, status: int) -> None:
        self.function = function
        self.status = status
        self.name, self.meaning = STATUSES.get(status, (str(status), "a status that this package does not know"))
        super().__init__(f"{function}: {self.name}: {self.meaning}")

    def __reduce__(self) -> Tuple[Type["LumcvError"], Tuple[str, int]]:
        return type(self), (self.function, self.status)


class LumcvWarning(UserWarning):
    """A call was done, and its status says something about the result. The attributes are those of LumcvError."""

    def __init__(self, function: str, status: int) -> None:
        self.function = function
        self.status = status
        self.name, self.meaning = STATUSES.get(status, (str(status), "a status that this package does not know"))
        super().__init__(f"{function}: {self.name}: {self.meaning}")


_library: Optional[ctypes.CDLL] = None
_lock = threading.Lock()


def library() -> ctypes.CDLL:
    """The library, loaded by the first call: the file that the environment's LUMCV_LIBRARY names, or what the
    system's loader finds."""
    global _library
    with _lock:
        if _library is None:
            path = os.environ.get("LUMCV_LIBRARY") or SONAME
            try:
                _library = ctypes.CDLL(path)
            except OSError as error:
                found = ctypes.util.find_library("lumcv")
                raise ImportError(
                    f"lumcv cannot be loaded ({error}). Install the library, or let the environment variable "
                    "LUMCV_LIBRARY name the file liblumcv.so" + (f"; the system knows {found}." if found else ".")
                ) from error
        return _library
