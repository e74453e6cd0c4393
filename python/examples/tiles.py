#!/usr/bin/env python3
"""Filters an image that is cut into tiles, wherever these are worked on: dask maps the tiles, lumcv filters each.

    tiles.py [WIDTH HEIGHT TILE]

The result is that of one call on the whole image, to the last bit. Each tile comes with the pixels around it that the
filter needs; its call flags the sides on which it has neighbours as lying in memory, so that the filter reads real
pixels there, and the outer sides of the image follow the border mode. So no pixel is filtered twice and none differs.

`map_tiles(image, operation)` takes a dask array of shape (height, width), or (height, width, channels) with all
channels in one chunk. Nothing that it does knows where it runs: threads, processes or the workers of a cluster, all of
which need lumcv. A record points into itself and cannot travel, so an operation is only what it takes to lay one, and
each tile lays its own where it is filtered; that takes microseconds.

Tiles cannot be smaller than the filter's reach on one side and a pixel: a mirrored border reflects that far into the
image. Smaller chunks are joined with their neighbours first, so that any chunks will do, even those of a pixel; the
result has the joined ones. An image that is smaller than that is one tile.
"""

from __future__ import annotations

import sys
import time
from dataclasses import dataclass
from typing import Any, List, Tuple

import dask.array as da
import numpy
from dask.array.overlap import overlap
from numpy.typing import NDArray

import lumcv

Image = NDArray[Any]
Reach = Tuple[int, int, int, int]

SUFFIXES = {"uint8": "8u", "uint16": "16u", "int16": "16s", "float32": "32f"}
CODES = {"8u": lumcv.lumType8u, "16u": lumcv.lumType16u, "16s": lumcv.lumType16s, "32f": lumcv.lumType32f}


def type_and_channels(image: Image) -> Tuple[str, int]:
    """What the name of a function says about an image."""
    return SUFFIXES[image.dtype.name], 1 if image.ndim == 2 else image.shape[2]


def size_of(image: Image) -> Tuple[int, int]:
    return image.shape[1], image.shape[0]


@dataclass(frozen=True)
class Gaussian:
    """A Gaussian blur of 8u, 16u, 16s or 32f images of one or three channels."""

    kernel_size: int
    sigma: float
    mode: int = lumcv.lumBorderMirror

    def reach(self) -> Reach:
        """The pixels that it needs left of, above, right of and below a pixel."""
        radius = self.kernel_size // 2
        return radius, radius, radius, radius

    def result(self, dtype: Any) -> Any:
        """The element type of the result."""
        return dtype

    def apply(self, source: Image, destination: Image, border: int) -> None:
        """Filters an image; `border` is the mode with the sides that lie in memory."""
        kind, channels = type_and_channels(source)
        size = size_of(source)
        spec, scratch = lumcv.blocks(
            lumcv.lumiFilterGaussianGetBufferSize, size, self.kernel_size, CODES[kind], channels
        )
        lumcv.lumiFilterGaussianInit(
            size, self.kernel_size, self.sigma, border, CODES[kind], channels, spec, scratch
        )
        blur = getattr(lumcv, f"lumiFilterGaussian_{kind}_C{channels}R")
        blur(source, destination, border, [0] * channels, spec, scratch)


@dataclass(frozen=True)
class Dilation:
    """The maximum under a rectangle, of 8u, 16u, 16s or 32f images of one channel, or 8u and 32f ones of three."""

    width: int
    height: int
    mode: int = lumcv.lumBorderReplicate

    def reach(self) -> Reach:
        x, y = self.width // 2, self.height // 2
        return x, y, x, y

    def result(self, dtype: Any) -> Any:
        return dtype

    def apply(self, source: Image, destination: Image, border: int) -> None:
        kind, channels = type_and_channels(source)
        size, element = size_of(source), (self.width, self.height)
        query = getattr(lumcv, f"lumiMorphologyBorderGetSize_{kind}_C{channels}R")
        init = getattr(lumcv, f"lumiMorphologyBorderInit_{kind}_C{channels}R")
        spec, scratch = lumcv.blocks(query, size, element)
        init(size, numpy.ones((self.height, self.width), numpy.uint8), element, spec, scratch)
        dilate = getattr(lumcv, f"lumiDilateBorder_{kind}_C{channels}R")
        dilate(source, destination, border, 0 if channels == 1 else [0] * channels, spec, scratch)


@dataclass(frozen=True)
class Separable:
    """The product of two kernels of integers, of 8u images into 16s ones of one channel."""

    along: Tuple[int, ...]
    across: Tuple[int, ...]
    divisor: int = 1
    mode: int = lumcv.lumBorderReplicate

    def reach(self) -> Reach:
        width, height = len(self.along), len(self.across)
        left, top = (width - 1) // 2, (height - 1) // 2
        return left, top, width - 1 - left, height - 1 - top

    def result(self, dtype: Any) -> Any:
        return numpy.dtype(numpy.int16)

    def apply(self, source: Image, destination: Image, border: int) -> None:
        kernel, code = (len(self.along), len(self.across)), lumcv.lumType8u
        spec = lumcv.blocks(lumcv.lumiFilterSeparableGetSpecSize, kernel, lumcv.lumType16s, 1)
        scratch = lumcv.blocks(
            lumcv.lumiFilterSeparableGetBufferSize, size_of(source), kernel, code, lumcv.lumType16s, 1
        )
        lumcv.lumiFilterSeparableInit_16s(self.along, self.across, kernel, self.divisor, 0, code, 1, spec)
        lumcv.lumiFilterSeparable_8u16s_C1R(source, destination, border, 0, spec, scratch)


@dataclass(frozen=True)
class Laplacian:
    """The Laplacian over 3x3 or 5x5 pixels, of 8u images into 16s ones of one channel."""

    mask: int = lumcv.lumMask5x5
    mode: int = lumcv.lumBorderMirror

    def reach(self) -> Reach:
        radius = 1 if self.mask == lumcv.lumMask3x3 else 2
        return radius, radius, radius, radius

    def result(self, dtype: Any) -> Any:
        return numpy.dtype(numpy.int16)

    def apply(self, source: Image, destination: Image, border: int) -> None:
        scratch = lumcv.blocks(lumcv.lumiFilterLaplacianGetBufferSize_8u16s_C1R, size_of(source), self.mask)
        lumcv.lumiFilterLaplacianBorder_8u16s_C1R(source, destination, self.mask, border, 0, scratch)


def filter_whole(image: Image, operation: Any) -> Image:
    """The result of one call."""
    destination = numpy.empty(image.shape, operation.result(image.dtype))
    operation.apply(image, destination, operation.mode)
    return destination


def joined(chunks: Tuple[int, ...], least: int) -> Tuple[int, ...]:
    """Chunks of at least so many pixels, unless there are fewer in all: small ones go to the one before."""
    result: List[int] = []
    for chunk in chunks:
        if result and (result[-1] < least or chunk == 0):
            result[-1] += chunk
        else:
            result.append(chunk)
    if len(result) > 1 and result[-1] < least:
        result[-2:] = [result[-2] + result[-1]]
    return tuple(result)


def filter_tile(padded: Image, operation: Any, block_info: Any = None) -> Image:
    """One tile: `padded` has the pixels of its neighbours around it, on the sides where it has any."""
    row, column = block_info[0]["chunk-location"][:2]
    rows, columns = block_info[0]["num-chunks"][:2]
    neighbours = column > 0, row > 0, column < columns - 1, row < rows - 1
    left, top, right, bottom = (pixels if exists else 0 for pixels, exists in zip(operation.reach(), neighbours))
    flags = (
        lumcv.lumBorderInMemLeft,
        lumcv.lumBorderInMemTop,
        lumcv.lumBorderInMemRight,
        lumcv.lumBorderInMemBottom,
    )
    border = operation.mode | sum(flag for flag, exists in zip(flags, neighbours) if exists)
    padded = numpy.ascontiguousarray(padded)
    tile = padded[top : padded.shape[0] - bottom, left : padded.shape[1] - right]
    destination = numpy.empty(tile.shape, operation.result(tile.dtype))
    operation.apply(tile, destination, border)
    return destination


def map_tiles(image: Any, operation: Any) -> Any:
    """The filtered image as a dask array, of the image's chunks; small ones are joined."""
    left, top, right, bottom = operation.reach()
    depth = {0: (top, bottom), 1: (left, right)}
    image = image.rechunk({axis: joined(image.chunks[axis], max(pixels) + 1) for axis, pixels in depth.items()})
    # along an axis with a single tile there are no neighbours, and there may be fewer pixels than the filter reaches
    depth = {axis: pixels if image.numblocks[axis] > 1 else (0, 0) for axis, pixels in depth.items()}
    padded = overlap(image, depth, boundary={0: "none", 1: "none"})
    result = operation.result(image.dtype)
    meta = numpy.empty((0,) * image.ndim, result)
    return padded.map_blocks(filter_tile, operation, dtype=result, chunks=image.chunks, meta=meta)


def main(arguments: List[str]) -> int:
    if len(arguments) not in (0, 3):
        print(__doc__)
        return 2
    width, height, tile = (int(argument) for argument in arguments) if arguments else (4096, 4096, 1024)
    pixels = numpy.random.default_rng(1).integers(0, 256, (height, width), numpy.uint8)
    image = da.from_array(pixels, chunks=(tile, tile))
    same = True
    for operation in (
        Gaussian(13, 2.5),
        Dilation(9, 5),
        Separable((1, 4, 6, 4, 1), (-1, -2, 0, 2, 1), 16),
        Laplacian(),
    ):
        begin = time.perf_counter()
        whole = filter_whole(pixels, operation)
        between = time.perf_counter()
        tiled = map_tiles(image, operation).compute(scheduler="threads")
        end = time.perf_counter()
        equal = bool(numpy.array_equal(whole, tiled))
        same &= equal
        print(
            f"{type(operation).__name__:10} whole {1e3 * (between - begin):7.1f} ms, "
            f"tiles {1e3 * (end - between):7.1f} ms, {'equal' if equal else 'NOT EQUAL'}"
        )
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
