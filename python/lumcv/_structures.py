"""The structures of the headers as ctypes structures that also behave like tuples."""

from __future__ import annotations

import ctypes
import re
from typing import Any, Dict, Iterator, Type

from ._table import STRUCTURES, element

SCALARS: Dict[str, Any] = {
    "uint8_t": ctypes.c_uint8,
    "int8_t": ctypes.c_int8,
    "uint16_t": ctypes.c_uint16,
    "int16_t": ctypes.c_int16,
    "uint32_t": ctypes.c_uint32,
    "int32_t": ctypes.c_int32,
    "int64_t": ctypes.c_int64,
    "float": ctypes.c_float,
    "double": ctypes.c_double,
    "char": ctypes.c_char,
    "const char*": ctypes.c_char_p,
    "void*": ctypes.c_void_p,
}

# What numpy calls the elements.
DTYPES = {
    "uint8_t": "uint8",
    "int8_t": "int8",
    "uint16_t": "uint16",
    "int16_t": "int16",
    "uint32_t": "uint32",
    "int32_t": "int32",
    "int64_t": "int64",
    "float": "float32",
    "double": "float64",
}


class Structure(ctypes.Structure):
    """A structure of the library: its fields by name, and in order where it is unpacked, compared or printed."""

    def __iter__(self) -> Iterator[Any]:
        for field in self._fields_:
            value = getattr(self, field[0])
            yield tuple(value) if isinstance(value, ctypes.Array) else value

    def __len__(self) -> int:
        return len(self._fields_)

    def __eq__(self, other: object) -> bool:
        if isinstance(other, (Structure, tuple, list)):
            return tuple(self) == tuple(other)
        return NotImplemented

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        fields = ", ".join(f"{field[0]}={value!r}" for field, value in zip(self._fields_, self))
        return f"{type(self).__name__}({fields})"


CLASSES: Dict[str, Type[Structure]] = {}


def c_type(kind: str) -> Any:
    """The ctypes type of a field."""
    array = re.match(r"(.*)\[(\d+)\]$", kind)
    if array:
        return c_type(array[1]) * int(array[2])
    if kind in CLASSES:
        return CLASSES[kind]
    kind = element(kind)
    return SCALARS[kind] if kind in SCALARS else ctypes.POINTER(c_type(kind[:-1]))


for _name, _structure in STRUCTURES.items():
    _about = "\n".join(f"    {field}: {about}" for field, _, about in _structure["fields"])
    CLASSES[_name] = type(
        _name,
        (Structure,),
        {
            "_fields_": [(field, c_type(kind)) for field, kind, _ in _structure["fields"]],
            "__doc__": f"{_structure['about']}\n\nFields:\n{_about}\n",
            "__module__": "lumcv",
        },
    )
