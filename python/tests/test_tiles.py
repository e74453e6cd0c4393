"""The tiles of the dask example together are the whole image's result, to the last byte, whatever their size."""

import subprocess
import sys
from pathlib import Path
from typing import Any

import lumcv
import numpy
import pytest

da = pytest.importorskip("dask.array", reason="takes dask")

EXAMPLES = Path(__file__).resolve().parent.parent / "examples"
sys.path.insert(0, str(EXAMPLES))

import tiles  # noqa: E402

MODES = [lumcv.lumBorderReplicate, lumcv.lumBorderMirror, lumcv.lumBorderConstant]
OPERATIONS = [
    *[tiles.Gaussian(7, 1.4, mode) for mode in MODES],
    *[tiles.Dilation(5, 4, mode) for mode in (*MODES, lumcv.lumBorderNeutral)],
    *[tiles.Separable((1, 2, 3, 4), (-1, 0, 5, 0, 1), 4, mode) for mode in MODES[:2]],
    *[tiles.Laplacian(lumcv.lumMask5x5, mode) for mode in MODES],
    tiles.Laplacian(lumcv.lumMask3x3),
]
# height, width, and chunks: even and uneven ones, smaller than the reach, of one pixel, larger than the image
CUTS: Any = [
    (23, 29, (8, 9)),
    (23, 29, ((5, 13, 5), (4, 4, 21))),
    (23, 29, (2, 29)),
    (9, 10, (1, 1)),
    (23, 29, ((1, 20, 1, 1), (26, 1, 1, 1))),
    (3, 40, (2, 10)),
    (2, 2, (1, 1)),
    (23, 29, (100, 100)),
]


def image(height: int, width: int, *channels: int, dtype: Any = numpy.uint8) -> Any:
    pixels = numpy.random.default_rng(5).integers(0, 256, (height, width, *channels))
    return pixels.astype(dtype)


@pytest.mark.parametrize("height, width, chunks", CUTS)
def test_tiles_give_the_result_of_the_whole(height: int, width: int, chunks: Any) -> None:
    pixels = image(height, width)
    for operation in OPERATIONS:
        whole = tiles.filter_whole(pixels, operation)
        tiled = tiles.map_tiles(da.from_array(pixels, chunks=chunks), operation)
        result = tiled.compute(scheduler="synchronous")
        assert result.dtype == whole.dtype == tiled.dtype and result.shape == whole.shape == tiled.shape
        assert result.tobytes() == whole.tobytes(), operation


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "int16", "float32"])
def test_all_types_and_channels(dtype: str) -> None:
    for channels in ((), (3,)):
        pixels = image(31, 27, *channels, dtype=dtype)
        stack = da.from_array(pixels, chunks=(10, 12, *channels))
        operation = tiles.Gaussian(5, 1.1)
        result = tiles.map_tiles(stack, operation).compute(scheduler="synchronous")
        assert result.tobytes() == tiles.filter_whole(pixels, operation).tobytes()


def test_on_threads_and_in_processes() -> None:
    pixels = image(120, 160)
    stack = da.from_array(pixels, chunks=(50, 60))
    for operation in (tiles.Gaussian(9, 2.0), tiles.Dilation(3, 7), tiles.Separable((1, 2, 1), (1, 0, -1))):
        expected = tiles.filter_whole(pixels, operation).tobytes()
        assert tiles.map_tiles(stack, operation).compute(scheduler="threads", num_workers=4).tobytes() == expected
    operation = tiles.Gaussian(9, 2.0)
    result = tiles.map_tiles(stack, operation).compute(scheduler="processes", num_workers=2)
    assert result.tobytes() == tiles.filter_whole(pixels, operation).tobytes()


def test_on_a_cluster() -> None:
    distributed = pytest.importorskip("distributed", reason="takes dask's distributed scheduler")
    pixels = image(120, 160)
    operation = tiles.Gaussian(9, 2.0)
    with distributed.Client(n_workers=2, threads_per_worker=2, dashboard_address=None):
        result = tiles.map_tiles(da.from_array(pixels, chunks=(50, 60)), operation).compute()
    assert result.tobytes() == tiles.filter_whole(pixels, operation).tobytes()


def test_chunks_that_are_joined() -> None:
    assert tiles.joined((5, 5, 5), 3) == (5, 5, 5)
    assert tiles.joined((1,) * 10, 4) == (4, 6)
    assert tiles.joined((2, 9, 1), 3) == (12,)
    assert tiles.joined((2, 1), 5) == (3,)
    assert tiles.joined((20, 1, 1, 7), 3) == (20, 9)
    for least in range(1, 9):
        for chunks in ((1, 2, 3, 4, 5), (9, 1, 1), (3,), (1, 1, 1, 1, 30)):
            result = tiles.joined(chunks, least)
            assert sum(result) == sum(chunks)
            assert min(result) >= least or len(result) == 1


def test_program_runs() -> None:
    done = subprocess.run(
        [sys.executable, EXAMPLES / "tiles.py", "200", "150", "64"], stdout=subprocess.PIPE, text=True, check=False
    )
    assert done.returncode == 0 and done.stdout.count(" equal") == 4, done.stdout
    wrong = subprocess.run([sys.executable, EXAMPLES / "tiles.py", "1"], stdout=subprocess.PIPE, text=True, check=False)
    assert wrong.returncode == 2
