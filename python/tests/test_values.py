"""What functions of each family compute, next to plain references."""

import re
from typing import Any

import lumcv
import numpy
import pytest
from lumcv._table import FUNCTIONS
from references import connected, image, over_mask, padded, rounded, separable, window

TYPES = {"8u": numpy.uint8, "16u": numpy.uint16, "16s": numpy.int16, "32s": numpy.int32, "32f": numpy.float32}
REPLICATE, MIRROR, CONSTANT = lumcv.lumBorderReplicate, lumcv.lumBorderMirror, lumcv.lumBorderConstant


def family(pattern: str) -> Any:
    """The functions whose names match, with what the pattern finds in them."""
    matches = [re.fullmatch(pattern, name) for name in FUNCTIONS]
    return [(getattr(lumcv, found.string), *found.groups()) for found in matches if found]


def test_accumulation() -> None:
    single = numpy.float32
    seen = 0
    for add, operation, kind, masked in family(r"lumiAdd(|Square|Product|Weighted)_(8u|16u|32f)(?:32f)?_C1I(M?)R"):
        first, second = (image(TYPES[kind], 13, 17, seed=seed) for seed in (1, 2))
        total = image(single, 13, 17, seed=3)
        mask = image(numpy.uint8, 13, 17, seed=4, top=2)
        factor = (mask != 0).astype(single) if masked else single(1)
        s, s2 = first.astype(single), second.astype(single)
        if operation == "Weighted":
            expected = total + (s - total) * (single(0.3) * factor)
        else:
            term = {"": s, "Square": s * s, "Product": s * s2}[operation]
            expected = total + term * factor
        sources = (first, second) if operation == "Product" else (first,)
        add(*sources, *((mask,) if masked else ()), total, *((0.3,) if operation == "Weighted" else ()))
        assert (total == expected).all(), add.__name__
        seen += 1
    assert seen == 23


def test_absolute_differences() -> None:
    for difference, kind in family(r"lumiAbsDiff_(\w+)_C1R"):
        first, second = image(TYPES[kind], 9, 31, seed=1), image(TYPES[kind], 9, 31, seed=2)
        out = numpy.empty_like(first)
        difference(first, second, out)
        wide = numpy.float64 if kind == "32f" else numpy.int64
        assert (out == abs(first.astype(wide) - second.astype(wide)).astype(out.dtype)).all()
    for difference, kind in family(r"lumiAbsDiffC_(\w+)_C1R"):
        first = image(TYPES[kind], 9, 31)
        out = numpy.empty_like(first)
        difference(first, out, 40)
        assert (out == abs(first.astype(numpy.float32) - numpy.float32(40)).astype(out.dtype)).all()


def test_means_norms_and_extrema() -> None:
    mask = image(numpy.uint8, 23, 31, seed=4, top=2)
    for call, deviation, kind, chosen, masked in family(r"lumiMean(_StdDev)?_(\w+)_(C1|C3C)(M?)R"):
        pixels = image(TYPES[kind], 23, 31, *((3,) if chosen == "C3C" else ()))
        result = call(pixels, *((mask,) if masked else ()), *((2,) if chosen == "C3C" else ()))
        plane = (pixels[..., 1] if chosen == "C3C" else pixels).astype(numpy.float64)
        values = plane[mask != 0] if masked else plane.reshape(-1)
        expected = (values.mean(), values.std()) if deviation else values.mean()
        assert result == pytest.approx(expected, rel=1e-6), call.__name__
    for call, relation, norm, kind, chosen in family(r"lumiNorm(|Diff|Rel)_(Inf|L1|L2)_(\w+)_(C1|C3C)MR"):
        order = {"Inf": numpy.inf, "L1": 1, "L2": 2}[norm]
        channels = (3,) if chosen == "C3C" else ()
        first, second = (image(TYPES[kind], 23, 31, *channels, seed=seed) for seed in (1, 2))
        planes = [(p[..., 2] if channels else p)[mask != 0].astype(numpy.float64) for p in (first, second)]
        result = call(first, *((second,) if relation else ()), mask, *((3,) if channels else ()))
        expected = numpy.linalg.norm(planes[0] - planes[1] if relation else planes[0], order)
        if relation == "Rel":
            expected /= numpy.linalg.norm(planes[1], order)
        assert result == pytest.approx(expected, rel=1e-6), call.__name__
    order = numpy.random.default_rng(1).permutation(12 * 20).reshape(12, 20)
    for call, kind, chosen, masked in family(r"lumiMinMaxIndx_(\w+)_(C1|C3C)(M?)R"):
        plane = order.astype(TYPES[kind])
        part = mask[:12, :20]
        pixels = numpy.stack([plane * 0, plane, plane * 0], 2) if chosen == "C3C" else plane
        result = call(pixels, *((part,) if masked else ()), *((2,) if chosen == "C3C" else ()))
        inside = numpy.where(part != 0, order, -1) if masked else order
        low = inside[inside >= 0].min()
        (y, x), (v, u) = numpy.argwhere(inside == low)[0], numpy.argwhere(inside == inside.max())[0]
        assert result == (low, inside.max(), (x, y), (u, v)), call.__name__


def test_pipelines() -> None:
    pixels = image(numpy.float32, 11, 19)
    kernel = [0.5, -1.25, 2.0, 0.75, 0.1]
    rows = numpy.empty((11, 19), numpy.float32)
    query = lumcv.lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
    for mode in (REPLICATE, MIRROR, CONSTANT):
        lumcv.lumiFilterRowBorderPipeline_32f_C1R(
            pixels, rows, kernel, 5, 1, mode, 3.0, lumcv.blocks(query, (19, 11), 5)
        )
        wide = padded(pixels, 1, 0, 3, 0, mode, 3.0)
        expected = numpy.float32(kernel[0]) * wide[:, :19]
        for i, tap in enumerate(kernel[1:], 1):
            expected = expected + numpy.float32(tap) * wide[:, i : i + 19]
        assert (rows == expected).all()
    # the column pass takes the same rows in any order, each as often as one likes
    out = numpy.empty((9, 19), numpy.float32)
    scratch = lumcv.blocks(lumcv.lumiFilterColumnPipelineGetBufferSize_32f_C1R, (19, 9), 5)
    given = [pixels[0], pixels[0], *pixels]
    lumcv.lumiFilterColumnPipeline_32f_C1R(given, out, kernel, 5, scratch)
    expected = numpy.float32(kernel[0]) * numpy.stack(given)[:9]
    for j, tap in enumerate(kernel[1:], 1):
        expected = expected + numpy.float32(tap) * numpy.stack(given)[j : j + 9]
    assert (out == expected).all()


def test_separable_filter() -> None:
    along, across = [1, -3, 4, 2], [2, 0, -1]
    for call, kind, into, channels, large in family(r"lumiFilterSeparable_(8u|16s|32f)(16s)?_C(\d)R(_L)?"):
        count = int(channels)
        pixels = image(TYPES[kind], 15, 26, *((count,) if count > 1 else ()))
        out = numpy.empty(pixels.shape, TYPES[into or kind])
        floats = kind == "32f"
        code, kernels = getattr(lumcv, "lumType" + kind), lumcv.lumType32f if floats else lumcv.lumType16s
        spec = lumcv.blocks(lumcv.lumiFilterSeparableGetSpecSize, (4, 3), kernels, count)
        scratch = lumcv.blocks(lumcv.lumiFilterSeparableGetBufferSize, (26, 15), (4, 3), code, kernels, count)
        if large:
            query = lumcv.lumiFilterSeparableGetBufferSize_L
            spec = lumcv.blocks(lumcv.lumiFilterSeparableGetSpecSize_L, (4, 3), kernels, count)
            scratch = lumcv.blocks(query, (26, 15), (4, 3), code, kernels, count)
        if floats:
            init = lumcv.lumiFilterSeparableInit_32f_L if large else lumcv.lumiFilterSeparableInit_32f
            init(along, across, (4, 3), code, count, spec)
        else:
            init = lumcv.lumiFilterSeparableInit_16s_L if large else lumcv.lumiFilterSeparableInit_16s
            init(along, across, (4, 3), 3, 0, code, count, spec)
        scale = numpy.float32(1) if floats else numpy.float32(1) / numpy.float32(3)
        expected = separable(pixels, [numpy.float32(tap) * scale for tap in along], across, MIRROR)
        call(pixels, out, MIRROR, 0 if count == 1 else None, spec, scratch)
        assert (out == (expected if floats else rounded(expected, out.dtype))).all(), call.__name__


def test_gaussian_filter() -> None:
    for call, kind, channels, large in family(r"lumiFilterGaussian_(\w+)_C(\d)R(_L)?"):
        count = int(channels)
        pixels = image(TYPES[kind], 21, 33, *((count,) if count > 1 else ()))
        code = getattr(lumcv, "lumType" + kind)
        out = numpy.empty_like(pixels)
        if large:
            query, sizes = lumcv.lumiFilterGaussianGetSpecSize_L, lumcv.lumiFilterGaussianGetBufferSize_L
            spec, init_scratch = lumcv.blocks(query, 7, code, count)
            scratch = lumcv.blocks(sizes, (33, 21), 7, code, REPLICATE, count)
            init = lumcv.lumiFilterGaussianInit_L
        else:
            spec, scratch = lumcv.blocks(lumcv.lumiFilterGaussianGetBufferSize, (33, 21), 7, code, count)
            init_scratch = scratch
            init = lumcv.lumiFilterGaussianInit
        init((33, 21), 7, 1.7, REPLICATE, code, count, spec, init_scratch)
        call(pixels, out, REPLICATE, None, spec, scratch)
        taps = numpy.exp(-numpy.arange(-3, 4.0) ** 2 / (2 * 1.7**2))
        taps /= taps.sum()
        wide = padded(pixels, 3, 3, 3, 3, REPLICATE).astype(numpy.float64)
        exact = sum(
            taps[i] * taps[j] * window(wide, i, j, 21, 33) for i in range(7) for j in range(7)
        )
        error = abs(out.astype(numpy.float64) - exact).max()
        assert error < (1e-4 if kind == "32f" else 0.5 + 1e-3), call.__name__


def test_fixed_filters() -> None:
    pixels = image(numpy.uint8, 17, 23)
    for size, mask in ((3, lumcv.lumMask3x3), (5, lumcv.lumMask5x5)):
        radius = size // 2
        wide = padded(pixels, radius, radius, radius, radius, MIRROR).astype(numpy.int64)
        parts = {
            (i - radius, j - radius): window(wide, i, j, 17, 23) for i in range(size) for j in range(size)
        }
        total = sum(parts.values())
        out = numpy.empty_like(pixels)
        scratch = lumcv.blocks(lumcv.lumiFilterLowpassGetBufferSize_8u_C1R, (23, 17), mask)
        lumcv.lumiFilterLowpassBorder_8u_C1R(pixels, out, mask, MIRROR, 0, scratch)
        assert (out == (((total + 5) * 7280) >> 16 if size == 3 else (total * 2621) >> 16)).all()
        cross = [1, 0, -1] if size == 3 else [1, 2, 0, -2, -1]
        signed = numpy.empty((17, 23), numpy.int16)
        scratch = lumcv.blocks(lumcv.lumiFilterSobelCrossGetBufferSize_8u16s_C1R, (23, 17), mask)
        lumcv.lumiFilterSobelCrossBorder_8u16s_C1R(pixels, signed, mask, MIRROR, 0, scratch)
        expected: Any = sum(cross[x + radius] * cross[y + radius] * part for (x, y), part in parts.items())
        assert (signed == expected).all()
        second, smooth = [1, 0, -2, 0, 1], [1, 4, 6, 4, 1]
        if size == 3:
            matrix = {(x, y): 2 * (x != 0 and y != 0) - 8 * (x == y == 0) for x, y in parts}
        else:
            matrix = {(x, y): smooth[x + 2] * second[y + 2] + second[x + 2] * smooth[y + 2] for x, y in parts}
        scratch = lumcv.blocks(lumcv.lumiFilterLaplacianGetBufferSize_8u16s_C1R, (23, 17), mask)
        lumcv.lumiFilterLaplacianBorder_8u16s_C1R(pixels, signed, mask, MIRROR, 0, scratch)
        assert (signed == sum(matrix[place] * part for place, part in parts.items())).all()


def test_dilation_and_erosion() -> None:
    mask = numpy.array([[0, 1, 0, 0, 1], [1, 1, 1, 0, 0], [0, 1, 0, 1, 0]], numpy.uint8)
    for call, name, kind, channels in family(r"lumi(Dilate|Erode)Border_(8u|16u|16s|32f)_C(\d)R"):
        count = int(channels)
        pixels = image(TYPES[kind], 14, 21, *((count,) if count > 1 else ()))
        out = numpy.empty_like(pixels)
        suffix = f"{kind}_C{count}R"
        spec, scratch = lumcv.blocks(getattr(lumcv, f"lumiMorphologyBorderGetSize_{suffix}"), (21, 14), (5, 3))
        getattr(lumcv, f"lumiMorphologyBorderInit_{suffix}")((21, 14), mask, (5, 3), spec, scratch)
        best = numpy.maximum if name == "Dilate" else numpy.minimum
        for mode in (REPLICATE, MIRROR, CONSTANT):
            call(pixels, out, mode, 9 if count == 1 else [9] * count, spec, scratch)
            assert (out == over_mask(pixels, mask, best, mode, 9)).all(), call.__name__
    bits = image(numpy.uint8, 12, 37, top=2)
    packed = numpy.packbits(numpy.pad(bits, ((0, 0), (3, 0))), axis=1, bitorder="little")
    spec, scratch = lumcv.blocks(lumcv.lumiMorphologyBorderGetSize_1u_C1R, (37, 12), (5, 3))
    lumcv.lumiMorphologyBorderInit_1u_C1R((37, 12), mask, (5, 3), spec, scratch)
    result = numpy.zeros((12, 5), numpy.uint8)
    lumcv.lumiDilateBorder_1u_C1R(packed, 3, result, 1, REPLICATE, 0, spec, scratch, roiSize=(37, 12))
    unpacked = numpy.unpackbits(result, axis=1, bitorder="little")
    assert (unpacked[:, 1:38] == over_mask(bits, mask, numpy.maximum, REPLICATE)).all()
    assert not unpacked[:, 0].any() and not unpacked[:, 38:].any()


def test_compound_morphology() -> None:
    square = numpy.ones((3, 5), numpy.uint8)
    for call, name, kind, channels in family(r"lumiMorph(Open|Close|Tophat|Blackhat|Gradient)_(8u|32f)_C(\d)R_L"):
        count = int(channels)
        pixels = image(TYPES[kind], 16, 22, *((count,) if count > 1 else ()))
        out = numpy.empty_like(pixels)
        code = getattr(lumcv, "lumType" + kind)
        spec = lumcv.blocks(lumcv.lumiMorphGetSpecSize_L, (22, 16), (5, 3), code, count)
        scratch = lumcv.blocks(lumcv.lumiMorphGetBufferSize_L, (22, 16), (5, 3), code, count)
        lumcv.lumiMorphInit_L((22, 16), square, (5, 3), code, count, spec)
        call(pixels, out, REPLICATE, None, spec, scratch)

        def grown(what: Any) -> Any:
            return over_mask(what, square, numpy.maximum, REPLICATE)

        def shrunk(what: Any) -> Any:
            return over_mask(what, square, numpy.minimum, REPLICATE)

        expected = {
            "Open": lambda: grown(shrunk(pixels)),
            "Close": lambda: shrunk(grown(pixels)),
            "Tophat": lambda: pixels - grown(shrunk(pixels)),
            "Blackhat": lambda: shrunk(grown(pixels)) - pixels,
            "Gradient": lambda: grown(pixels) - shrunk(pixels),
        }[name]()
        assert (out == expected).all(), call.__name__


def test_gray_morphology() -> None:
    heights = numpy.array([[0, 3, -2], [5, 1, 0]], numpy.int32)
    pixels = image(numpy.uint8, 12, 18)
    record = lumcv.blocks(lumcv.lumiMorphGrayGetSize_8u_C1R, (18, 12), heights, (3, 2))
    lumcv.lumiMorphGrayInit_8u_C1R(record, (18, 12), heights, (3, 2), (1, 0))
    wide = padded(pixels, 1, 0, 1, 1, REPLICATE).astype(numpy.int64)
    parts = [(int(heights[j, i]), window(wide, i, j, 12, 18)) for j in range(2) for i in range(3)]
    out = numpy.empty_like(pixels)
    lumcv.lumiGrayDilateBorder_8u_C1R(pixels, out, REPLICATE, record)
    assert (out == numpy.clip(numpy.max([part + height for height, part in parts], 0), 0, 255)).all()
    lumcv.lumiGrayErodeBorder_8u_C1R(pixels, out, REPLICATE, record)
    assert (out == numpy.clip(numpy.min([part - height for height, part in parts], 0), 0, 255)).all()


def test_reconstruction() -> None:
    mask = image(numpy.uint8, 20, 24, top=4) * 50
    marker = numpy.zeros_like(mask)
    marker[5, 7], marker[15, 20] = 150, 90
    expected = numpy.minimum(marker, mask)
    while True:
        grown = numpy.minimum(over_mask(expected, numpy.ones((3, 3)), numpy.maximum, REPLICATE), mask)
        if (grown == expected).all():
            break
        expected = grown
    scratch = lumcv.blocks(lumcv.lumiMorphReconstructGetBufferSize, (24, 20), lumcv.lumType8u, 1)
    lumcv.lumiMorphReconstructDilate_8u_C1IR(mask, marker, scratch, lumcv.lumDistanceNormInf)
    assert (marker == expected).all() and marker.any()


def test_integral_images() -> None:
    pixels = image(numpy.uint8, 13, 19)
    sums = numpy.empty((14, 20), numpy.int32)
    squares = numpy.empty((14, 20), numpy.float64)
    lumcv.lumiSqrIntegral_8u32s64f_C1R(pixels, sums, squares, 5, 7.0)
    wide = pixels.astype(numpy.int64)
    expected = numpy.pad(wide.cumsum(0).cumsum(1), ((1, 0), (1, 0))) + 5
    assert (sums == expected).all()
    assert (squares == numpy.pad((wide * wide).cumsum(0).cumsum(1), ((1, 0), (1, 0))) + 7.0).all()
    # deviations under rectangles of 4x3, at all places where they fit
    deviation = numpy.empty((11, 16), numpy.float32)
    lumcv.lumiRectStdDev_32s32f_C1R(sums, squares, deviation, (0, 0, 4, 3))
    under = numpy.lib.stride_tricks.sliding_window_view(wide, (3, 4)).reshape(11, 16, 12)
    assert deviation == pytest.approx(under.std(2), rel=1e-3, abs=1e-2)
    with pytest.raises(ValueError, match="pSrc has 20x14 pixels, and the call takes 21x14"):
        lumcv.lumiRectStdDev_32s32f_C1R(sums, squares, deviation, (0, 0, 5, 3))
    tilted = numpy.empty((15, 21), numpy.int32)
    with pytest.raises(ValueError, match="pDst has 20x14"):
        lumcv.lumiTiltedIntegral_8u32s_C1R(pixels, sums, 0)
    lumcv.lumiTiltedIntegral_8u32s_C1R(pixels, tilted, 9)
    cones = numpy.full((15, 21), 9, numpy.int64)
    for r in range(13):
        above, before = cones[r + 1], cones[r]
        cones[r + 2, 0] = above[1]
        cones[r + 2, 1:19] = above[:18] - before[1:19] + above[2:20] + wide[r, :18] + wide[r, 1:]
        cones[r + 2, 19] = above[18] - before[19] + above[20] + wide[r, 18]
        cones[r + 2, 20] = above[20]
    assert (tilted == cones).all()


def test_haar_stage() -> None:
    """The windows that are dark on the left and bright on the right."""
    pixels = numpy.zeros((20, 30), numpy.uint8)
    pixels[:, 12:] = 200
    sums, squares = numpy.empty((21, 31), numpy.float32), numpy.empty((21, 31), numpy.float64)
    lumcv.lumiSqrIntegral_8u32f64f_C1R(pixels, sums, squares, 0, 0)
    norms = numpy.empty((13, 23), numpy.float32)
    lumcv.lumiRectStdDev_32f_C1R(sums, squares, norms, (0, 0, 8, 8))
    stage = lumcv.blocks(lumcv.lumiHaarClassifierGetSize, lumcv.lumType32f, (23, 13), [2], 1)
    rectangles = numpy.array([[0, 0, 8, 8], [4, 0, 4, 8]], numpy.int32)
    lumcv.lumiHaarClassifierInit_32f(stage, rectangles, [1, -2], [-56], [1], [0], [2], 1)
    mask = numpy.full((13, 23), 255, numpy.uint8)
    kept = lumcv.lumiApplyHaarClassifier_32f_C1R(sums, norms, mask, 13 * 23, 0.5, stage)
    assert kept == numpy.count_nonzero(mask) == 13
    # the windows whose middle is the edge
    assert (numpy.nonzero(mask)[1] == 8).all()
    assert lumcv.lumiGetHaarClassifierSize_32f(stage) == (8, 8)


def test_corners() -> None:
    pixels = image(numpy.uint8, 24, 30)
    out = numpy.empty((24, 30), numpy.float32)
    scratch = lumcv.blocks(lumcv.lumiMinEigenValGetBufferSize_8u32f_C1R, (30, 24), 3, 3)
    lumcv.lumiMinEigenVal_8u32f_C1R(pixels, out, lumcv.lumKernSobel, 3, 3, scratch)
    wide = padded(pixels, 1, 1, 1, 1, REPLICATE).astype(numpy.float64)
    weights = [1, 2, 1]
    dx = sum(weights[j] * (window(wide, 0, j, 24, 30) - window(wide, 2, j, 24, 30)) for j in range(3))
    dy = sum(weights[i] * (window(wide, i, 2, 24, 30) - window(wide, i, 0, 24, 30)) for i in range(3))
    a, b, c = (
        sum(window(padded(product, 1, 1, 1, 1, REPLICATE), i, j, 24, 30) for i in range(3) for j in range(3)) / 9
        for product in (dx * dx, dx * dy, dy * dy)
    )
    expected = (a + c - numpy.sqrt((a - c) ** 2 + 4 * b * b)) * 0.5 / (255 << 4)
    assert out == pytest.approx(expected, rel=1e-3, abs=1e-2)
    kind, size = lumcv.lumFilterSobel, lumcv.lumMask3x3
    scratch = lumcv.blocks(lumcv.lumiHarrisCornerGetBufferSize, (30, 24), size, 3, lumcv.lumType8u, 1)
    lumcv.lumiHarrisCorner_8u32f_C1R(pixels, out, kind, size, 3, 0.05, 1e-10, REPLICATE, 0, scratch)
    response = (a * c - b * b - 0.05 * (a + c) ** 2) * 1e-10 * 3**4
    assert out == pytest.approx(response, rel=1e-3, abs=1e-5 * abs(response).max())
    features = image(numpy.uint8, 24, 30, seed=5)
    kept = numpy.empty_like(features)
    scratch = lumcv.blocks(lumcv.lumiLineSuppressionGetBufferSize, (30, 24), size, 3, lumcv.lumType8u, 1)
    lumcv.lumiLineSuppression_8u_C1R(pixels, features, kept, kind, size, 3, 6.0, REPLICATE, 0, scratch)
    is_line = (a + c) ** 2 > (a * c - b * b) * 6.0
    assert (kept == numpy.where(is_line, 0, features)).all() and 0.1 < is_line.mean() < 0.9
    # all distinct, so that a peak is above its neighbours
    peaks = numpy.random.default_rng(2).permutation(24 * 30).reshape(24, 30).astype(numpy.float32)
    points = numpy.zeros(200, numpy.dtype(lumcv.LumiPoint))
    scratch = lumcv.blocks(lumcv.lumiFindPeaks3x3GetBufferSize_32f_C1R, 30)
    count = lumcv.lumiFindPeaks3x3_32f_C1R(peaks, 300.0, points, 200, lumcv.lumPeakNormInf, 1, scratch)
    best = over_mask(peaks, numpy.ones((3, 3)), numpy.maximum, REPLICATE)
    found = numpy.argwhere((peaks == best) & (peaks > 300))
    expected_points = {(x, y) for y, x in found if 0 < x < 29 and 0 < y < 23}
    assert {(point["x"], point["y"]) for point in points[:count]} == expected_points and count > 20
    # the same list as pairs of numbers
    pairs = numpy.zeros((200, 2), numpy.int32)
    assert lumcv.lumiFindPeaks3x3_32f_C1R(peaks, 300.0, pairs, 200, lumcv.lumPeakNormInf, 1, scratch) == count
    assert (pairs[:, 0] == points["x"]).all() and (pairs[:, 1] == points["y"]).all()


def test_fast_corners() -> None:
    pixels = image(numpy.uint8, 26, 30, seed=12)
    mode = lumcv.lumFastNCorners
    setting = (3, 9, 0, mode)
    spec = lumcv.blocks(lumcv.lumiFastNGetSize, (30, 26), *setting, lumcv.lumType8u, 1)
    lumcv.lumiFastNInit((30, 26), *setting, 40.0, lumcv.lumType8u, 1, spec)
    scratch = lumcv.blocks(lumcv.lumiFastNGetBufferSize, spec, (30, 26))
    corners = numpy.zeros((26, 30), numpy.uint8)
    count = lumcv.lumiFastN_8u_C1R(pixels, corners, None, (0, 0), spec, scratch)
    assert count == numpy.count_nonzero(corners) > 0
    quarter = [(0, -3), (1, -3), (2, -2), (3, -1)]
    ring = quarter.copy()
    for _ in range(3):
        quarter = [(-y, x) for x, y in quarter]
        ring += quarter
    wide = pixels.astype(int)
    for y in range(3, 23):
        for x in range(3, 27):
            around = [wide[y + dy, x + dx] - wide[y, x] for dx, dy in ring] * 2
            arcs = [around[k : k + 9] for k in range(16)]
            is_corner = any(min(arc) > 40 or max(arc) < -40 for arc in arcs)
            assert (corners[y, x] != 0) == is_corner, (x, y)
    listed = numpy.zeros(count, numpy.dtype(lumcv.LumCornerFastN))
    assert lumcv.lumiFastN2DToVec_8u(corners, None, listed, count, spec) == count
    assert [(corner["y"], corner["x"]) for corner in listed] == [tuple(place) for place in numpy.argwhere(corners)]


def test_edges_and_lines() -> None:
    pixels = numpy.zeros((40, 50), numpy.uint8)
    pixels[:, 20:] = 200
    edges = numpy.empty_like(pixels)
    scratch = lumcv.blocks(lumcv.lumiCannyBorderGetSize, (50, 40), lumcv.lumFilterSobel, lumcv.lumMask3x3)
    lumcv.lumiCannyBorder_8u_C1R(
        pixels, edges, lumcv.lumFilterSobel, lumcv.lumMask3x3, REPLICATE, 0, 50.0, 100.0, lumcv.lumNormL2, scratch
    )
    columns = numpy.nonzero(edges.any(0))[0]
    assert columns.size == 1 and columns[0] in (19, 20) and edges[:, columns[0]].all()
    lines = numpy.zeros((4, 2), numpy.float32)
    step = (1.0, float(numpy.pi / 180))
    scratch = lumcv.blocks(lumcv.lumiHoughLineGetSize_8u_C1R, (50, 40), step, 4)
    count = lumcv.lumiHoughLine_8u32f_C1R(edges, step, 20, lines, 4, scratch)
    assert count >= 1
    assert lines[0] == pytest.approx([columns[0], 0])
    spec, scratch = lumcv.blocks(lumcv.lumiHoughProbLineGetSize_8u_C1R, (50, 40), step)
    lumcv.lumiHoughProbLineInit_8u32f_C1R((50, 40), step, 0, spec)
    segments = numpy.zeros((4, 4), numpy.int32)
    assert lumcv.lumiHoughProbLine_8u32f_C1R(edges, 20, 30, 2, segments, 4, scratch, spec) == 1
    assert sorted(segments[0].reshape(2, 2).tolist()) == [[columns[0], 0], [columns[0], 39]]


def test_distances() -> None:
    pixels = (image(numpy.uint8, 18, 25, top=20) > 0).astype(numpy.uint8)
    zeros = numpy.argwhere(pixels == 0)
    ys, xs = numpy.indices(pixels.shape)
    dy, dx = (abs(grid[..., None] - zeros[:, axis]) for axis, grid in enumerate((ys, xs)))
    out = numpy.empty(pixels.shape, numpy.float32)
    scratch = lumcv.blocks(lumcv.lumiTrueDistanceTransformGetBufferSize_8u32f_C1R, (25, 18))
    lumcv.lumiTrueDistanceTransform_8u32f_C1R(pixels, out, scratch)
    assert out == pytest.approx(numpy.sqrt((dx * dx + dy * dy).min(2)), rel=1e-6)
    bytes_out = numpy.empty_like(pixels)
    weights = numpy.empty(2, numpy.int32)
    for norm, expected in (
        (lumcv.lumDistanceNormL1, (dx + dy).min(2)),
        (lumcv.lumDistanceNormInf, numpy.maximum(dx, dy).min(2)),
    ):
        lumcv.lumiGetDistanceTransformMask_32s(3, norm, weights)
        lumcv.lumiDistanceTransform_3x3_8u_C1R(pixels, bytes_out, weights)
        assert (bytes_out == expected).all()


def test_inpainting() -> None:
    """A hole in an even surface is filled with what is around it."""
    pixels = numpy.full((30, 30, 3), (10, 120, 240), numpy.uint8)
    mask = numpy.zeros((30, 30), numpy.uint8)
    mask[12:16, 10:17] = 1
    pixels[mask != 0] = 77
    far = numpy.empty((30, 30), numpy.float32)
    scratch = lumcv.blocks(lumcv.lumiFastMarchingGetBufferSize_8u32f_C1R, (30, 30))
    lumcv.lumiFastMarching_8u32f_C1R(mask, far, 3.0, scratch)
    for method in (lumcv.lumInpaintByFront, lumcv.lumInpaintByIsophote):
        memory, scratch = lumcv.blocks(lumcv.lumiInpaintGetSize, mask, 3.0, method, 3)
        state = lumcv.lumiInpaintInit_8u_C3R(far, mask, 3.0, method, memory, scratch)
        assert state is memory
        out = numpy.empty_like(pixels)
        lumcv.lumiInpaint_8u_C3R(pixels, out, state, scratch)
        assert (abs(out.astype(int) - (10, 120, 240)) <= 1).all()


def test_flood_fills() -> None:
    for call, kind, neighbours, element, channels in family(
        r"lumiFloodFill_(|Range|Grad)([48])Con_(8u|16u|32s|32f)_C([13])IR"
    ):
        count = int(channels)
        pixels = image(TYPES[element], 16, 19, *((count,) if count > 1 else ()), top=6)
        pixels = abs(pixels.astype(numpy.float64).round()).astype(TYPES[element])
        if kind == "Grad":
            # slopes on two levels: whichever taken pixel it is that a pixel is compared with makes no difference
            level, slope = 40 * (image(numpy.uint8, 16, 19, top=5) > 1), numpy.arange(19) // 5
            pixels = (level + slope if count == 1 else numpy.stack([level + slope] * 3, 2)).astype(TYPES[element])
        values = pixels.reshape(16, 19, count).astype(numpy.int64)
        seed = (7, 8)

        def same(here: Any, there: Any) -> bool:
            base = values[here] if kind == "Grad" else values[seed]
            reach = 1 if kind else 0
            return bool((abs(values[there] - base) <= reach).all())

        mask = connected(same, seed, values.shape, neighbours == "8")
        scratch_query = lumcv.lumiFloodFillGetSize_Grad if kind == "Grad" else lumcv.lumiFloodFillGetSize
        scratch = lumcv.blocks(scratch_query, (19, 16))
        deltas = () if not kind else (1, 1) if count == 1 else ([1] * 3, [1] * 3)
        before = pixels.copy()
        region = call(pixels, (8, 7), 99 if count == 1 else [99] * 3, *deltas, scratch)
        assert (pixels[mask] == 99).all() and (pixels[~mask] == before[~mask]).all(), call.__name__
        rows, columns = numpy.nonzero(mask)
        assert region.area == mask.sum() and tuple(region.value)[:count] == (99.0,) * count
        assert region.rect == (columns.min(), rows.min(), numpy.ptp(columns) + 1, numpy.ptp(rows) + 1)


def test_labels_speckles_and_watersheds() -> None:
    pixels = image(numpy.uint8, 20, 22, top=2)
    labels = numpy.empty((20, 22), numpy.int32)
    scratch = lumcv.blocks(lumcv.lumiLabelMarkersGetBufferSize_8u32s_C1R, (22, 20))
    count = lumcv.lumiLabelMarkers_8u32s_C1R(pixels, labels, 1, 1000, lumcv.lumDistanceNormL1, scratch)
    assert (labels[pixels == 0] == 0).all()
    seen = numpy.zeros((20, 22), bool)
    components = 0
    small = pixels.copy()
    for place in numpy.argwhere(pixels):
        seed = tuple(place)
        if not seen[seed]:
            component = connected(lambda _, there: pixels[there] != 0, seed, pixels.shape, False)
            assert (labels[component] == labels[seed]).all() and (labels == labels[seed]).sum() == component.sum()
            seen |= component
            components += 1
    assert count == components > 10
    # speckles: regions of equal pixels, zeros as well, of at most three
    expected = pixels.copy()
    for y in range(20):
        for x in range(22):
            if connected(lambda _, there: pixels[there] == pixels[y, x], (y, x), pixels.shape, False).sum() <= 3:
                expected[y, x] = 9
    scratch = lumcv.blocks(lumcv.lumiMarkSpecklesGetBufferSize, (22, 20), lumcv.lumType8u, 1)
    lumcv.lumiMarkSpeckles_8u_C1IR(small, 9, 3, 0, lumcv.lumNormInf, scratch)
    assert (small == expected).all()
    # two basins with a ridge between them
    heights = numpy.zeros((9, 21), numpy.uint8)
    heights[:] = 10 - abs(numpy.arange(21) - 10)
    markers = numpy.zeros((9, 21), numpy.uint8)
    markers[4, 2], markers[4, 18] = 1, 2
    scratch = lumcv.blocks(lumcv.lumiSegmentWatershedGetBufferSize_8u_C1R, (21, 9))
    lumcv.lumiSegmentWatershed_8u_C1IR(heights, markers, 1, lumcv.lumSegmentByLevel, scratch)
    assert (markers[:, :10] == 1).all() and (markers[:, 11:] == 2).all()
    # two plateaus, each of which is flooded from its seed before the step between them
    plateaus = numpy.tile(numpy.where(numpy.arange(21) < 12, 50, 120).astype(numpy.uint8), (9, 1))
    markers[:] = 0
    markers[4, 2], markers[4, 18] = 1, 2
    scratch = lumcv.blocks(lumcv.lumiSegmentGradientGetBufferSize_8u_C1R, (21, 9))
    lumcv.lumiSegmentGradient_8u_C1IR(plateaus, markers, 1, 0, scratch)
    inside = markers[1:8, 1:20]
    assert (inside == numpy.where(plateaus[1:8, 1:20] == 50, 1, 2)).all()
    markers[1:8, 1:20] = 255
    assert (markers == 255).all()


def test_background_and_motion() -> None:
    model = lumcv.LumFGMMModel(200, 3, 15, 4, 75, 16, 0.9, 9, 0.05, 127, 1, 0.5)
    state = lumcv.Record(lumcv.lumiFGMMGetBufferSize_8u_C3R((16, 12), 3))
    lumcv.lumiFGMMInit_8u_C3R((16, 12), 3, model, state)
    frame = image(numpy.uint8, 12, 16, 3)
    classes = numpy.empty((12, 16), numpy.uint8)
    for _ in range(20):
        lumcv.lumiFGMMForeground_8u_C3R(frame, classes, state, None, -1.0)
    assert not classes.any()
    rendered = numpy.empty_like(frame)
    lumcv.lumiFGMMBackground_8u_C3R(rendered, state)
    assert (abs(rendered.astype(int) - frame) <= 1).all()
    changed = frame.copy()
    changed[3:6, 4:9] ^= 0x80
    lumcv.lumiFGMMForeground_8u_C3R(changed, classes, state, model, -1.0)
    different = (changed != frame).any(2)
    assert (classes[~different] == 0).all() and (classes[different] != 0).all()
    history = image(numpy.float32, 12, 16, top=12)
    before = history.copy()
    silhouette = image(numpy.uint8, 12, 16, top=2)
    lumcv.lumiUpdateMotionHistory_8u32f_C1IR(silhouette, history, 10.0, 4.0)
    assert (history == numpy.where(silhouette != 0, 10, numpy.where(before < 6, 0, before))).all()


def test_geometry() -> None:
    pixels = image(numpy.uint8, 20, 24)
    out = numpy.zeros_like(pixels)
    scratch = lumcv.blocks(lumcv.lumiUndistortGetSize, (24, 20))
    lumcv.lumiUndistortRadial_8u_C1R(pixels, out, 30.0, 30.0, 12.0, 10.0, 0.0, 0.0, scratch)
    assert (out[1:-1, 1:-1] == pixels[1:-1, 1:-1]).all()
    columns, rows = numpy.empty((20, 24), numpy.float32), numpy.empty((20, 24), numpy.float32)
    lumcv.lumiCreateMapCameraUndistort_32f_C1R(columns, rows, 30, 30, 12, 10, 0.1, 0.01, 0.001, 0.002, scratch)
    x, y = (numpy.arange(24) - 12) / 30, (numpy.arange(20)[:, None] - 10) / 30
    r2 = x * x + y * y
    bend = 1 + 0.1 * r2 + 0.01 * r2 * r2
    assert columns == pytest.approx(30 * (x * bend + 2 * 0.001 * x * y + 0.002 * (r2 + 2 * x * x)) + 12, abs=1e-3)
    assert rows == pytest.approx(30 * (y * bend + 0.001 * (r2 + 2 * y * y) + 2 * 0.002 * x * y) + 10, abs=1e-3)
    floats = pixels.astype(numpy.float32)
    part = numpy.empty((19, 23), numpy.float32)
    lumcv.lumiCopySubpix_32f_C1R(floats, part, 0.25, 0.625)
    across = 0.75 * floats[:, :-1] + 0.25 * floats[:, 1:]
    assert part == pytest.approx(0.375 * across[:-1] + 0.625 * across[1:], rel=1e-5)
    patch = numpy.empty((5, 7), numpy.uint8)
    first, last = lumcv.lumiCopySubpixIntersect_8u_C1R(pixels, patch, (10.0, 8.0))
    assert (patch == pixels[6:11, 7:14]).all() and (first, last) == ((0, 0), (6, 4))
    first, last = lumcv.lumiCopySubpixIntersect_8u_C1R(pixels, patch, (1.0, 0.0))
    assert (patch == padded(pixels, 3, 3, 3, 3, REPLICATE)[1:6, 1:8]).all() and first == (2, 2)
    line = numpy.empty((8, 3), numpy.float32)
    colours = image(numpy.float32, 20, 24, 3)
    lumcv.lumiSampleLine_32f_C3R(colours, line, (3, 9), (10, 9))
    assert (line == colours[9, 3:11]).all()
    gray = numpy.empty((20, 24), numpy.float32)
    lumcv.lumiGradientColorToGray_32f_C3C1R(colours, gray, lumcv.lumGradNormInf)
    assert (gray == abs(colours).max(2)).all()


def test_pyramids_and_flow() -> None:
    rng = numpy.random.default_rng(4)
    coarse = rng.random((20, 24)).repeat(4, 0).repeat(4, 1)
    for _ in range(3):
        coarse = over_smooth(coarse)
    first = (coarse * 255).astype(numpy.float32)
    second = numpy.roll(first, (2, 3), (0, 1))
    size = (96, 80)
    assert lumcv.lumiGetPyramidDownROI(size, 2.0) == (48, 40)
    pyramids = []
    keep = []
    for pixels in (first, second):
        memory, scratch = lumcv.blocks(lumcv.lumiPyramidGetSize, 1, size, 2.0)
        record = lumcv.lumiPyramidInit(1, size, 2.0, memory, scratch)
        view = record.view(lumcv.LumiPyramidRecord)
        assert view.level == 1 and view.pLayerSizes[1] == (48, 40) and view.pLayerScales[1] == 0.5
        state_memory, scratch = lumcv.blocks(lumcv.lumiPyramidLayerDownGetSize_32f_C1R, size, 2.0, 5)
        state = lumcv.lumiPyramidLayerDownInit_32f_C1R(size, 2.0, [1, 4, 6, 4, 1], 5, 2, state_memory, scratch)
        small = numpy.empty((40, 48), numpy.float32)
        lumcv.lumiPyramidLayerDown_32f_C1R(pixels, small, state)
        taps = [tap / 16 for tap in (1, 4, 6, 4, 1)]
        expected = separable(pixels, taps, taps, REPLICATE)[::2, ::2]
        assert small[5:-5, 5:-5] == pytest.approx(expected[5:-5, 5:-5], rel=1e-3)
        for level, layer in enumerate((pixels, small)):
            view.ppLayers[level] = layer.ctypes.data
            view.pLayerSteps[level] = layer.strides[0]
        keep += [pixels, small]
        pyramids.append(record)
    memory = lumcv.blocks(lumcv.lumiOpticalFlowPyrLKGetSize, 11, size, lumcv.lumType32f, 0)
    flow = lumcv.lumiOpticalFlowPyrLKInit_32f_C1R(size, 11, 0, memory)
    points = numpy.array([[30, 30], [50, 40], [60, 25.5]], numpy.float32)
    found, lost, error = numpy.empty_like(points), numpy.empty(3, numpy.int8), numpy.empty(3, numpy.float32)
    lumcv.lumiOpticalFlowPyrLK_32f_C1R(*pyramids, points, found, lost, error, 3, 11, 1, 30, 0.001, flow)
    assert not lost.any()
    assert found - points == pytest.approx(numpy.tile([3, 2], (3, 1)), abs=0.05)


def over_smooth(pixels: Any) -> Any:
    """The mean of 5x5 pixels, round the edges."""
    return sum(numpy.roll(pixels, (j, i), (0, 1)) for i in range(-2, 3) for j in range(-2, 3)) / 25
