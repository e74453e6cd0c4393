"""What holds for all functions: sizes left out, borders, results, errors, warnings, records, threads."""

import copy
import os
import pickle
import subprocess
import sys
import threading
import time
import warnings
from pathlib import Path
from typing import Any, List

import lumcv
import numpy
import pytest

PACKAGE = Path(__file__).resolve().parent.parent


def random_image(*shape: int, seed: int = 3) -> Any:
    return numpy.random.default_rng(seed).integers(0, 256, shape).astype(numpy.uint8)


def test_size_left_out_is_that_of_the_images() -> None:
    source = random_image(7, 9)
    total = numpy.zeros((7, 9), numpy.float32)
    assert lumcv.lumiAdd_8u32f_C1IR(source, total) is None
    assert (total == source).all()
    with pytest.raises(ValueError, match="pSrcDst has 8x7 pixels and pSrc 9x7"):
        lumcv.lumiAdd_8u32f_C1IR(source, total[:, :8])


def test_size_given_is_the_upper_left_part() -> None:
    source = random_image(7, 9)
    total = numpy.zeros((8, 10), numpy.float32)
    lumcv.lumiAdd_8u32f_C1IR(source, total, roiSize=(4, 3))
    assert (total[:3, :4] == source[:3, :4]).all()
    total[:3, :4] = 0
    assert not total.any()
    lumcv.lumiAdd_8u32f_C1IR(source, total, roiSize=lumcv.LumiSize(9, 7))
    assert (total[:7, :9] == source).all()


def test_parts_of_images_are_worked_on_in_place() -> None:
    frame = random_image(40, 50, 3)
    before = frame.copy()
    part = frame[5:15, 7:27]
    other = numpy.zeros((10, 20, 3), numpy.uint8)
    assert part.base is frame
    spec, scratch = lumcv.blocks(lumcv.lumiMorphologyBorderGetSize_8u_C3R, (20, 10), (3, 3))
    lumcv.lumiMorphologyBorderInit_8u_C3R((20, 10), [1] * 9, (3, 3), spec, scratch)
    lumcv.lumiDilateBorder_8u_C3R(other, part, lumcv.lumBorderReplicate, [0, 0, 0], spec, scratch)
    assert not part.any()
    before[5:15, 7:27] = 0
    assert (frame == before).all()


def test_single_rows_and_columns() -> None:
    frame = random_image(9, 11)
    total = numpy.zeros((9, 11), numpy.float32)
    lumcv.lumiAdd_8u32f_C1IR(frame[4:5], total[2:3])
    lumcv.lumiAdd_8u32f_C1IR(frame[:, 3:4], total[:, 5:6])
    expected = numpy.zeros((9, 11), numpy.float32)
    expected[2] += frame[4]
    expected[:, 5] += frame[:, 3]
    assert (total == expected).all()


def test_channels_of_one_may_have_an_axis() -> None:
    total = numpy.zeros((7, 9, 1), numpy.float32)
    lumcv.lumiAdd_8u32f_C1IR(random_image(7, 9, 1), total)
    assert (total == random_image(7, 9, 1)).all()


def test_empty_images_are_refused_by_the_library() -> None:
    with pytest.raises(lumcv.LumcvError) as caught:
        lumcv.lumiAdd_8u32f_C1IR(numpy.zeros((0, 5), numpy.uint8), numpy.zeros((0, 5), numpy.float32))
    assert caught.value.name == "lumErrSize"


def test_missing_and_surplus_arguments() -> None:
    image = random_image(4, 4)
    total = numpy.zeros((4, 4), numpy.float32)
    with pytest.raises(TypeError, match="misses pSrcDst"):
        lumcv.lumiAdd_8u32f_C1IR(image)  # type: ignore[call-arg]
    with pytest.raises(TypeError, match="takes 2 arguments"):
        lumcv.lumiAdd_8u32f_C1IR(image, total, (4, 4))  # type: ignore[misc]
    with pytest.raises(TypeError, match="no parameter srcStep"):
        lumcv.lumiAdd_8u32f_C1IR(image, total, srcStep=4)  # type: ignore[call-arg]
    with pytest.raises(TypeError, match="got pSrc twice"):
        lumcv.lumiAdd_8u32f_C1IR(image, pSrc=image, pSrcDst=total)  # type: ignore[misc]
    with pytest.raises(TypeError, match="roiSize is missing"):
        lumcv.lumiMorphOpenBorder_1u_C1R(image, 0, image, 0, 1, 0, None, None)
    with pytest.raises(AttributeError, match="lumiNothing"):
        lumcv.lumiNothing  # type: ignore[attr-defined]


def test_errors_say_what_and_where() -> None:
    with pytest.raises(lumcv.LumcvError) as caught:
        lumcv.lumiMean_8u_C3CMR(random_image(4, 4, 3), random_image(4, 4), 4)
    error = caught.value
    assert (error.function, error.status, error.name) == (
        "lumiMean_8u_C3CMR",
        lumcv.lumErrChannelOfInterest,
        "lumErrChannelOfInterest",
    )
    assert str(error) == "lumiMean_8u_C3CMR: lumErrChannelOfInterest: a channel of interest outside 1..3"
    again = pickle.loads(pickle.dumps(error))
    assert (again.function, again.status) == (error.function, error.status)


def test_warnings_come_with_the_result() -> None:
    image, zeros, mask = random_image(5, 5), numpy.zeros((5, 5), numpy.uint8), numpy.ones((5, 5), numpy.uint8)
    with pytest.warns(lumcv.LumcvWarning, match="lumWrnZeroDivisor") as caught:
        norm = lumcv.lumiNormRel_L1_8u_C1MR(image, zeros, mask)
    assert norm == float("inf")
    assert caught[0].message.status == lumcv.lumWrnZeroDivisor  # type: ignore[union-attr]
    assert caught[0].filename == __file__
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(lumcv.LumcvWarning):
            lumcv.lumiNormRel_L1_8u_C1MR(image, zeros, mask)


def gaussian(size: Any, border: int, kernel: int = 5) -> Any:
    spec, scratch = lumcv.blocks(lumcv.lumiFilterGaussianGetBufferSize, size, kernel, lumcv.lumType8u, 1)
    lumcv.lumiFilterGaussianInit(size, kernel, 1.0, border, lumcv.lumType8u, 1, spec, scratch)
    return spec, scratch


def test_border_flags_must_be_true() -> None:
    frame = random_image(30, 40)
    spec, scratch = gaussian((40, 30), lumcv.lumBorderReplicate)
    sides = {
        lumcv.lumBorderInMemTop: (slice(1, 20), slice(5, 30)),
        lumcv.lumBorderInMemBottom: (slice(5, 29), slice(5, 30)),
        lumcv.lumBorderInMemLeft: (slice(5, 20), slice(1, 30)),
        lumcv.lumBorderInMemRight: (slice(5, 20), slice(5, 39)),
    }
    whole = numpy.empty_like(frame)
    lumcv.lumiFilterGaussian_8u_C1R(frame, whole, lumcv.lumBorderReplicate, None, spec, scratch)
    for flag, part in sides.items():
        view = frame[part]
        out = numpy.empty(view.shape, numpy.uint8)
        with pytest.raises(ValueError, match="a border flag promises pixels"):
            lumcv.lumiFilterGaussian_8u_C1R(view, out, lumcv.lumBorderReplicate | flag, None, spec, scratch)
        others = sum(sides) & ~flag
        lumcv.lumiFilterGaussian_8u_C1R(view, out, lumcv.lumBorderReplicate | others, None, spec, scratch)
    inner = frame[2:28, 2:38]
    out = numpy.empty(inner.shape, numpy.uint8)
    lumcv.lumiFilterGaussian_8u_C1R(inner, out, lumcv.lumBorderInMem, None, spec, scratch)
    assert (out == whole[2:28, 2:38]).all()


def test_border_flags_of_every_kind_of_filter() -> None:
    frame = random_image(30, 40)
    view, out = frame[1:], numpy.empty((29, 40), numpy.uint8)
    top = lumcv.lumBorderReplicate | lumcv.lumBorderInMemTop
    scratch = numpy.empty(1 << 20, numpy.uint8)
    # a mask of 3x3 reaches one row, one of 5x5 two
    lumcv.lumiFilterLowpassBorder_8u_C1R(view, out, lumcv.lumMask3x3, top, 0, scratch)
    with pytest.raises(ValueError, match="top 2"):
        lumcv.lumiFilterLowpassBorder_8u_C1R(view, out, lumcv.lumMask5x5, top, 0, scratch)
    # of a larger element all of it is looked at, wherever its positions are; an empty one copies
    centre, corner = [0] * 7 + [1] + [0] * 7, [1] + [0] * 14
    for height, mask, reaches in ((3, [1] * 9, 1), (5, [1] * 15, 2), (5, centre, 2), (5, corner, 2), (5, [0] * 15, 0)):
        spec = lumcv.Record(4096)
        lumcv.lumiMorphologyBorderInit_8u_C1R((40, 30), mask, (3, height), spec, scratch)
        if reaches < 2:
            lumcv.lumiErodeBorder_8u_C1R(view, out, top, 0, spec, scratch)
        else:
            with pytest.raises(ValueError, match="top 2"):
                lumcv.lumiErodeBorder_8u_C1R(view, out, top, 0, spec, scratch)
    # both passes of an opening read it
    large = lumcv.lumiMorphGetSpecSize_L((40, 30), (3, 3), lumcv.lumType8u, 1)
    spec = lumcv.Record(large)
    lumcv.lumiMorphInit_L((40, 30), [1] * 9, (3, 3), lumcv.lumType8u, 1, spec)
    with pytest.raises(ValueError, match="top 2"):
        lumcv.lumiMorphOpen_8u_C1R_L(view, out, top, None, spec, scratch)
    spec = lumcv.Record(lumcv.lumiFilterSeparableGetSpecSize((1, 4), lumcv.lumType16s, 1))
    lumcv.lumiFilterSeparableInit_16s([1], [1, 1, 1, 1], (1, 4), 4, 0, lumcv.lumType8u, 1, spec)
    lumcv.lumiFilterSeparable_8u_C1R(view, out, top, 0, spec, scratch)
    with pytest.raises(ValueError, match="bottom 2"):
        lumcv.lumiFilterSeparable_8u_C1R(
            frame[:-1], out, lumcv.lumBorderReplicate | lumcv.lumBorderInMemBottom, 0, spec, scratch
        )


def test_records_cannot_be_copied() -> None:
    spec, _ = gaussian((8, 8), lumcv.lumBorderReplicate)
    assert spec.laid == "lumiFilterGaussianInit" and len(spec) == spec.block.size
    for copying in (copy.copy, copy.deepcopy, pickle.dumps):
        with pytest.raises(TypeError, match="points into itself"):
            copying(spec)


def test_plain_blocks_do_as_well() -> None:
    frame = random_image(12, 16)
    sizes = lumcv.lumiFilterGaussianGetBufferSize((16, 12), 3, lumcv.lumType8u, 1)
    assert isinstance(sizes, tuple) and all(isinstance(size, int) for size in sizes)
    # records stand at any address
    spec, scratch = (numpy.empty(size + 1, numpy.uint8)[1:] for size in sizes)
    lumcv.lumiFilterGaussianInit((16, 12), 3, 1.0, lumcv.lumBorderMirror, lumcv.lumType8u, 1, spec, scratch)
    out, again = numpy.empty_like(frame), numpy.empty_like(frame)
    lumcv.lumiFilterGaussian_8u_C1R(frame, out, lumcv.lumBorderMirror, None, spec, scratch)
    spec, scratch = gaussian((16, 12), lumcv.lumBorderMirror, 3)
    lumcv.lumiFilterGaussian_8u_C1R(frame, again, lumcv.lumBorderMirror, None, spec, scratch)
    assert (out == again).all() and (out != frame).any()


def test_blocks_are_only_made_of_queries() -> None:
    with pytest.raises(TypeError, match="no query"):
        lumcv.blocks(lumcv.lumiMean_8u_C1MR, random_image(3, 3), random_image(3, 3))
    with pytest.raises(lumcv.LumcvError):
        lumcv.blocks(lumcv.lumiFloodFillGetSize, (0, 1))
    assert lumcv.blocks(lumcv.lumiFloodFillGetSize, (10, 10)).dtype == numpy.uint8


def test_plain_numbers_become_arrays_only_where_they_are_read() -> None:
    kernel = numpy.empty(3, numpy.int16)
    lumcv.lumiGenSobelKernel_16s(kernel, 3, 1, 1)
    assert kernel.tolist() == [-1, 0, 1]
    with pytest.raises(TypeError, match="pDst"):
        lumcv.lumiGenSobelKernel_16s([0, 0, 0], 3, 1, 1)  # type: ignore[arg-type]
    spec = lumcv.Record(4096)
    for wrong in ([1, 70000, 1], [1, 2.5, 1]):
        with pytest.raises(ValueError, match="pKernelX"):
            lumcv.lumiFilterSeparableInit_16s(wrong, [1], (3, 1), 1, 0, 1, 1, spec)  # type: ignore[arg-type]


def test_threads_work_at_the_same_time() -> None:
    """While one thread is within a long call, another one runs: the interpreter's lock is free."""
    frame = random_image(3000, 3000)
    spec, _ = gaussian((3000, 3000), lumcv.lumBorderMirror, 31)
    results: List[Any] = [None, None]

    def work(index: int) -> None:
        scratch = gaussian((3000, 3000), lumcv.lumBorderMirror, 31)[1]
        out = numpy.empty_like(frame)
        lumcv.lumiFilterGaussian_8u_C1R(frame, out, lumcv.lumBorderMirror, None, spec, scratch)
        results[index] = out

    started = threading.Event()
    finished = threading.Event()
    during = 0

    def watched() -> None:
        started.set()
        for index in (0, 1):
            work(index)
        finished.set()

    thread = threading.Thread(target=watched)
    thread.start()
    started.wait()
    while not finished.is_set():
        during += 1
        time.sleep(0.001)
    thread.join()
    assert during > 5
    assert (results[0] == results[1]).all()


def test_threads_share_a_record() -> None:
    frame = random_image(200, 300)
    spec, scratch = gaussian((300, 200), lumcv.lumBorderMirror)
    expected = numpy.empty_like(frame)
    lumcv.lumiFilterGaussian_8u_C1R(frame, expected, lumcv.lumBorderMirror, None, spec, scratch)
    wrong: List[int] = []

    def work(index: int) -> None:
        own = numpy.empty_like(scratch)
        for _ in range(20):
            out = numpy.zeros_like(frame)
            lumcv.lumiFilterGaussian_8u_C1R(frame, out, lumcv.lumBorderMirror, None, spec, own)
            if (out != expected).any():
                wrong.append(index)

    threads = [threading.Thread(target=work, args=(index,)) for index in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_says_where_to_find_the_library() -> None:
    environment = {**os.environ, "LUMCV_LIBRARY": "/nowhere/liblumcv.so", "PYTHONPATH": str(PACKAGE)}
    done = subprocess.run(
        [sys.executable, "-c", "import lumcv; lumcv.lumiAdd_8u32f_C1IR"],
        env=environment,
        stderr=subprocess.PIPE,
        text=True,
        check=False,
    )
    assert done.returncode == 1
    assert "ImportError" in done.stderr and "LUMCV_LIBRARY" in done.stderr and "/nowhere/liblumcv.so" in done.stderr
