"""Plain references in numpy, written from the headers."""

from typing import Any, Callable, Dict, List, Tuple

import lumcv
import numpy

MODES: Dict[int, str] = {lumcv.lumBorderReplicate: "edge", lumcv.lumBorderMirror: "reflect"}


def image(dtype: Any, *shape: int, seed: int = 7, top: int = 256) -> Any:
    """Random pixels; floats with fractions, signed ones of both signs."""
    generator = numpy.random.default_rng(seed)
    dtype = numpy.dtype(dtype)
    if dtype.kind == "f":
        return (generator.random(shape) * top - top / 4).astype(dtype)
    return generator.integers(-top // 2 if dtype.kind == "i" else 0, top, shape).astype(dtype)


def padded(pixels: Any, left: int, top: int, right: int, bottom: int, mode: int, value: Any = 0) -> Any:
    """An image with what a border mode gives around it."""
    width = [(top, bottom), (left, right)] + [(0, 0)] * (pixels.ndim - 2)
    if mode == lumcv.lumBorderConstant:
        return numpy.pad(pixels, width, constant_values=value)
    return numpy.pad(pixels, width, mode=MODES[mode])  # type: ignore[call-overload]


def window(pixels: Any, x: int, y: int, height: int, width: int) -> Any:
    return pixels[y : y + height, x : x + width]


def over_mask(pixels: Any, mask: Any, best: Callable[..., Any], mode: int, value: Any = 0) -> Any:
    """The best pixel under a flat element, whose anchor is its middle."""
    height, width = mask.shape
    wide = padded(pixels, width // 2, height // 2, width // 2, height // 2, mode, value)
    found = None
    for j, i in zip(*numpy.nonzero(mask)):
        part = window(wide, i, j, *pixels.shape[:2])
        found = part if found is None else best(found, part)
    return found


def rounded(values: Any, dtype: Any) -> Any:
    """To the nearest integer, ties to even, within the type's range."""
    limits = numpy.iinfo(dtype)
    return numpy.clip(numpy.rint(values), limits.min, limits.max).astype(dtype)


def separable(pixels: Any, along: List[Any], across: List[Any], mode: int) -> Any:
    """Two passes in single precision, each operation rounded by itself, in the order of the kernels."""
    left, top = (len(along) - 1) // 2, (len(across) - 1) // 2
    wide = padded(pixels, left, top, len(along) - 1 - left, len(across) - 1 - top, mode).astype(numpy.float32)
    height, width = pixels.shape[:2]
    rows = numpy.float32(along[0]) * wide[:, :width]
    for i, tap in enumerate(along[1:], 1):
        rows = rows + numpy.float32(tap) * wide[:, i : i + width]
    total = numpy.float32(across[0]) * rows[:height]
    for j, tap in enumerate(across[1:], 1):
        total = total + numpy.float32(tap) * rows[j : j + height]
    return total


Place = Tuple[int, int]


def connected(same: Callable[[Place, Place], bool], seed: Place, shape: Any, eight: bool) -> Any:
    """The pixels that are reached from a seed, as a mask; `same` tells whether one leads to another."""
    mask = numpy.zeros(shape[:2], bool)
    mask[seed] = True
    open_ends = [seed]
    while open_ends:
        y, x = open_ends.pop()
        for dy in (-1, 0, 1):
            for dx in (-1, 0, 1):
                to = (y + dy, x + dx)
                if (dy or dx) and (eight or not (dy and dx)) and 0 <= to[0] < shape[0] and 0 <= to[1] < shape[1]:
                    if not mask[to] and same((y, x), to):
                        mask[to] = True
                        open_ends.append(to)
    return mask
