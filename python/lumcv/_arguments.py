"""Turns Python arguments into C ones: checks them, and never copies an array."""

from __future__ import annotations

import ctypes
import operator
from typing import Any, List, Optional, Sequence, Tuple

import numpy

from ._record import Record
from ._roles import Parameter
from ._structures import CLASSES, SCALARS, Structure

RANGES = {
    kind: (int(numpy.iinfo(kind[:-2]).min), int(numpy.iinfo(kind[:-2]).max))
    for kind in SCALARS
    if kind.endswith("int8_t") or kind.endswith(("int16_t", "int32_t", "int64_t"))
}
ELEMENTS = {
    kind: numpy.dtype(numpy_name)
    for kind, numpy_name in zip(
        ("uint8_t", "int8_t", "uint16_t", "int16_t", "uint32_t", "int32_t", "int64_t", "float", "double"),
        ("u1", "i1", "u2", "i2", "u4", "i4", "i8", "f4", "f8"),
    )
}
ELEMENTS.update({name: numpy.dtype(structure) for name, structure in CLASSES.items() if name != "LumiPyramidRecord"
                 and name != "LumLibraryVersion"})


def address(array: Any) -> int:
    """Where an array's first element stands."""
    return int(array.__array_interface__["data"][0])


def number(parameter: Parameter, value: Any) -> Any:
    """A number that its C type can hold: a plain conversion would cut it to size."""
    try:
        if parameter.kind in RANGES:
            value = operator.index(value)
            low, high = RANGES[parameter.kind]
            if not low <= value <= high:
                raise ValueError(f"{parameter.name} is {value}, which its type, {parameter.kind}, cannot hold")
            return value
        # a text is no number, although float() reads it
        return float(value + 0)
    except TypeError:
        raise TypeError(f"{parameter.name} is a number, not {value!r}") from None


def structure(parameter: Parameter, value: Any) -> Structure:
    """A structure, of its own kind or of the numbers of its fields."""
    kind = CLASSES[parameter.kind]
    if isinstance(value, kind):
        return value
    fields = kind._fields_
    try:
        values = tuple(value)
    except TypeError:
        values = ()
    if len(values) != len(fields):
        names = ", ".join(field[0] for field in fields)
        raise TypeError(f"{parameter.name} is a {parameter.kind} or its fields ({names}), not {value!r}")
    made = kind()
    for field, item in zip(fields, values):
        c_type: Any = field[1]
        if issubclass(c_type, (ctypes.c_float, ctypes.c_double)):
            setattr(made, field[0], float(item))
        else:
            item = operator.index(item)
            setattr(made, field[0], item)
            if getattr(made, field[0]) != item:
                raise ValueError(f"{parameter.name}.{field[0]} is {item}, which its type cannot hold")
    return made


def pointed(parameter: Parameter, value: Any) -> Tuple[Any, Optional[int]]:
    """A structure that the caller has filled, or the record that holds it: what to keep, and its address."""
    if value is None:
        return None, None
    if isinstance(value, Record):
        return value, value.address
    if not isinstance(value, CLASSES[parameter.kind]):
        raise TypeError(f"{parameter.name} is a lumcv.{parameter.kind}, not {type(value).__name__}")
    return value, ctypes.addressof(value)


def expect_array(parameter: Parameter, value: Any) -> None:
    """A numpy array of the right element, in its own byte order, aligned, and writable where it is written."""
    if not isinstance(value, numpy.ndarray):
        raise TypeError(f"{parameter.name} is a numpy array of {parameter.dtype}, not {type(value).__name__}")
    element = ELEMENTS[parameter.kind]
    if value.dtype != element:
        raise TypeError(f"{parameter.name} is an array of {element}, not of {value.dtype}")
    expect_access(parameter, value)


def expect_access(parameter: Parameter, value: numpy.ndarray[Any, Any]) -> None:
    flags = value.flags
    if not parameter.constant and not flags.writeable:
        raise ValueError(f"{parameter.name} is written, and the array is read-only")
    if not flags.aligned:
        raise ValueError(f"{parameter.name} does not stand at a multiple of its element size in memory")


class Image:
    """An array that stands for an image: the address of its first pixel, its stride, and its size in pixels."""

    __slots__ = ("parameter", "array", "address", "step", "height", "width", "pixel")

    def __init__(self, parameter: Parameter, value: Any) -> None:
        expect_array(parameter, value)
        channels = parameter.channels
        shape, strides, size = value.shape, value.strides, value.itemsize
        if len(shape) == 2 and channels == 1:
            beside = strides[1] == size or shape[1] < 2
        elif len(shape) == 3 and shape[2] == channels:
            beside = (strides[1] == size * channels or shape[1] < 2) and (strides[2] == size or channels < 2)
        else:
            expected = "(height, width)" if channels == 1 else f"(height, width, {channels})"
            raise ValueError(f"{parameter.name} has the shape {expected}, not {shape}")
        # numpy does not say what the strides of nothing are
        if not beside and value.size:
            raise ValueError(f"{parameter.name}: the pixels of a row do not stand side by side in memory")
        self.parameter = parameter
        self.array = value
        self.address = address(value)
        self.height, self.width = shape[0], shape[1]
        self.pixel = size * channels
        self.step = strides[0]
        if self.height < 2 and (self.step < self.width * self.pixel or self.step % size):
            # numpy does not say what the stride of a single row is
            self.step = max(1, self.width) * self.pixel
        elif self.step < self.width * self.pixel:
            raise ValueError(
                f"{parameter.name}: rows stand {self.step} bytes apart, which is less than a row of "
                f"{self.width * self.pixel} bytes: rows are neither reversed nor overlapping"
            )
        elif self.step % size:
            raise ValueError(f"{parameter.name}: the distance of rows is not a multiple of the element size")

    def expect_margins(self, roi: Any, margins: Sequence[int]) -> None:
        """That the pixels which border flags promise exist, if numpy knows the memory around the ROI.

        `margins` are the pixels read beyond the ROI: left, top, right, bottom.
        """
        owner = self.array
        while isinstance(owner.base, numpy.ndarray):
            owner = owner.base
        if not owner.flags.owndata or not owner.flags.c_contiguous:
            return
        left, top, right, bottom = margins
        first = self.address - top * self.step - left * self.pixel - address(owner)
        last = first + (top + roi.height - 1 + bottom) * self.step + (left + roi.width + right) * self.pixel
        inside = 0 <= first and last <= owner.nbytes
        row = owner.strides[0] if owner.ndim > 1 else 0
        if inside and row == self.step:
            column = (self.address - address(owner)) % row
            inside = left * self.pixel <= column and column + (roi.width + right) * self.pixel <= row
        if not inside:
            raise ValueError(
                f"{self.parameter.name}: a border flag promises pixels around the ROI (left {left}, top {top}, right "
                f"{right}, bottom {bottom}) that the array around it does not have"
            )


def rows(parameter: Parameter, value: Any) -> Tuple[Optional[List[Any]], Any]:
    """Rows of pixels, each by itself: an image's rows or any sequence of arrays. Keeps what it returns first."""
    if value is None:
        return None, None
    pixels = list(value)
    for row in pixels:
        expect_array(parameter, row)
        if not row.flags.c_contiguous:
            raise ValueError(f"{parameter.name}: the pixels of a row do not stand side by side in memory")
    return pixels, (ctypes.c_void_p * max(1, len(pixels)))(*[address(row) for row in pixels])


def array(parameter: Parameter, value: Any) -> Any:
    """A plain array. One that is only read can be any sequence of numbers, which becomes an array."""
    if value is None:
        return None
    if parameter.constant and not isinstance(value, numpy.ndarray) and parameter.dtype:
        plain = numpy.array(value)
        if parameter.kind in RANGES and plain.size:
            low, high = RANGES[parameter.kind]
            if plain.dtype.kind not in "iu" or plain.min() < low or plain.max() > high:
                raise ValueError(f"{parameter.name} has numbers that its type, {parameter.kind}, cannot hold")
        return plain.astype(ELEMENTS[parameter.kind])
    kind = CLASSES.get(parameter.kind)
    if kind is None:
        expect_array(parameter, value)
    else:
        element = ELEMENTS[parameter.kind]
        if not isinstance(value, numpy.ndarray):
            raise TypeError(f"{parameter.name} is a numpy array of numpy.dtype(lumcv.{kind.__name__})")
        if value.dtype != element:
            scalars = {ELEMENTS_OF[field[1]] for field in kind._fields_}
            if len(scalars) > 1 or value.dtype not in scalars or value.shape[-1:] != (len(kind._fields_),):
                raise TypeError(
                    f"{parameter.name} is an array of numpy.dtype(lumcv.{kind.__name__})"
                    + (f", or of {scalars.pop()} with {len(kind._fields_)} columns" if len(scalars) == 1 else "")
                    + f", not of {value.dtype} with the shape {value.shape}"
                )
        expect_access(parameter, value)
    if not value.flags.c_contiguous:
        raise ValueError(f"{parameter.name} does not stand in one piece in memory")
    return value


ELEMENTS_OF = {SCALARS[kind]: dtype for kind, dtype in ELEMENTS.items() if kind in SCALARS}


def items(parameter: Parameter, value: Any) -> int:
    """How many elements an array has."""
    kind = CLASSES.get(parameter.kind)
    return int(value.nbytes // ctypes.sizeof(kind)) if kind is not None else int(value.size)


def block(parameter: Parameter, value: Any) -> Tuple[Any, Optional[int]]:
    """A block: what to keep, and where it stands. A record that an Init has laid stands where that says."""
    if value is None:
        return None, None
    if isinstance(value, Record):
        return value, value.address
    if not isinstance(value, numpy.ndarray) or value.dtype != numpy.uint8:
        found = f"an array of {value.dtype}" if isinstance(value, numpy.ndarray) else type(value).__name__
        raise TypeError(f"{parameter.name} is a lumcv.Record or an array of uint8, not {found}")
    if not value.flags.c_contiguous:
        raise ValueError(f"{parameter.name} does not stand in one piece in memory")
    if not parameter.constant and not value.flags.writeable:
        raise ValueError(f"{parameter.name} is written, and the array is read-only")
    return value, address(value)


def expect_length(parameter: Parameter, value: Any, least: int) -> None:
    """That an array has as many elements as the call takes."""
    if value is not None and items(parameter, value) < least:
        raise ValueError(f"{parameter.name} has {items(parameter, value)} elements, and the call takes {least}")

