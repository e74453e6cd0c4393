"""Valid arguments for any export, made of its parameters alone where that is possible."""

import re
from typing import Any, Dict, Tuple

import lumcv
import numpy
from lumcv._roles import Parameter, Role, parameters_of
from lumcv._structures import CLASSES

WIDTH, HEIGHT = 24, 20
# what images have more than the ROI, so that tables and windows find all that they read
MARGIN = 40

NUMBERS: Dict[str, Any] = {
    "N": 9,
    "alpha": 0.25,
    "apertureSize": 3,
    "avgWindow": 3,
    "border": 1,
    "borderType": lumcv.lumBorderReplicate,
    "borderValue": 3,
    "channels": 1,
    "circleRadius": 3,
    "coi": 2,
    "cx": 12.0,
    "cy": 10.0,
    "dataType": lumcv.lumType8u,
    "divisor": 4,
    "dstBitOffset": 3,
    "dx": 1,
    "dy": 0.5,
    "filterMask": lumcv.lumMask3x3,
    "filterType": lumcv.lumFilterSobel,
    "flag": lumcv.lumSegmentByLevel,
    "fx": 30.0,
    "fy": 30.0,
    "highThreshold": 90.0,
    "hint": 0,
    "k": 0.04,
    "k1": 0.01,
    "k2": 0.001,
    "kernType": lumcv.lumKernSobel,
    "kernelSize": 5,
    "kernelType": lumcv.lumType16s,
    "learningRate": 0.1,
    "length": 2,
    "level": 1,
    "lineGap": 1,
    "lineLength": 2,
    "lowThreshold": 30.0,
    "mask": lumcv.lumMask3x3,
    "maskSize": lumcv.lumMask3x3,
    "maskType": 31,
    "maxDelta": 4,
    "maxIter": 5,
    "maxLabel": 200,
    "maxLen": 7,
    "maxLev": 0,
    "maxLineCount": 6,
    "maxNGauss": 3,
    "maxPeakCount": 8,
    "maxPixDiff": 3,
    "maxSpeckleSize": 4,
    "method": lumcv.lumInpaintByFront,
    "mhiDuration": 4.0,
    "minDelta": 4,
    "minLabel": 1,
    "mode": 2,
    "newVal": 9,
    "norm": 1,  # the four neighbours, the largest magnitude or the sum of magnitudes, by the function
    "numChannels": 1,
    "numFeat": 3,
    "orientationBins": 16,
    "p1": 0.001,
    "p2": 0.001,
    "pPositive": 100,
    "radius": 3.0,
    "rate": 2.0,
    "roiWidth": WIDTH,
    "scale": 1.0,
    "scaleFactor": 0,
    "sigma": 1.2,
    "sign": 1,
    "speckleVal": 0,
    "srcBitOffset": 5,
    "threshold": 5,
    "timestamp": 9.0,
    "val": 1,
    "valSqr": 1,
    "value": 3,
    "winSize": 5,
    "xAnchor": 2,
}

FAST_MODE = lumcv.lumFastNCorners | lumcv.lumFastNScore


def number(function: str, name: str) -> Any:
    """A number that the function takes."""
    if name == "dataType" and function == "lumiHarrisCornerGetBufferSize":
        return lumcv.lumType32f
    floats = function == "lumiHaarClassifierGetSize" or "Separable" in function and "_32f" in function
    if name == "dataType" and floats:
        return lumcv.lumType32f
    if name == "dataType" and "SeparableGetSpecSize" in function:
        return lumcv.lumType16s
    if name == "mode" and "FastN" in function:
        return FAST_MODE
    if name == "mode" and "SetMode" in function:
        return 1
    if name == "flag" and "32f16u" in function:
        return lumcv.lumSegmentByCost
    if name == "kernelSize" and "DistanceTransformMask" in function:
        return 3
    if name == "norm" and "Canny" in function:
        return lumcv.lumNormL1
    return NUMBERS[name]


STRUCTURES: Dict[str, Tuple[Any, ...]] = {
    "anchor": (1, 1),
    "delta": (1.0, 0.05),
    "kernelSize": (3, 3),
    "maskSize": (3, 3),
    "point": (10.5, 8.25),
    "pt1": (2, 3),
    "pt2": (9, 5),
    "rect": (1, 1, 4, 3),
    "seed": (4, 5),
    "srcRoiOffset": (0, 0),
}


def size(function: str, name: str) -> Tuple[int, int]:
    """The size of an image: pyramids halve them, all others have one."""
    if name == "dstRoi":
        if "LayerDown" in function:
            return WIDTH // 2, HEIGHT // 2
        return WIDTH * 2, HEIGHT * 2
    return WIDTH, HEIGHT


def pixels(parameter: Parameter, height: int, width: int, seed: int = 1) -> Any:
    """An image with some structure, of small values."""
    shape = (height, width) if parameter.channels == 1 else (height, width, parameter.channels)
    generator = numpy.random.default_rng(seed)
    return generator.integers(0, 100, shape).astype(parameter.dtype)


def array(function: str, parameter: Parameter) -> Any:
    """A plain array, longer than any call takes; elements of a stage's or a kernel's."""
    if parameter.name == "pNum":
        return numpy.array([2, 2], numpy.int32)
    if parameter.name == "pFeature":
        return numpy.array([[3, 0, 4, 4], [1, 0, 2, 2]] * 2, numpy.int32)
    if parameter.name == "pMask" and parameter.dtype == "uint8":
        return numpy.ones(9, numpy.uint8)
    if parameter.name in ("pKernel", "pKernelX", "pKernelY"):
        return numpy.array([1, 4, 6, 4, 1], parameter.dtype)
    if parameter.name == "dstRoi":
        return numpy.array([[-50, 0], [50, 3]], numpy.float32)
    if parameter.kind in CLASSES:
        return numpy.zeros(16, numpy.dtype(CLASSES[parameter.kind]))
    return numpy.ones(64, parameter.dtype)


def model() -> Any:
    """The usual parameters of a background model."""
    return lumcv.LumFGMMModel(200, 3, 15, 4, 75, 16, 0.9, 9, 0.05, 127, 1, 0.5)


BLOCK_SIZE = 1 << 17
UNTOUCHED = 0xA5


def scratch() -> Any:
    """More scratch than any call here takes: the last quarter stays as it is."""
    return numpy.full(BLOCK_SIZE, UNTOUCHED, numpy.uint8)


def empty_record() -> Any:
    """A block for any record here: the last quarter stays as it is."""
    made = lumcv.Record(BLOCK_SIZE)
    made.block[:] = UNTOUCHED
    return made


def overrun(block: Any) -> bool:
    """Whether something has written beyond what blocks here are meant to hold."""
    memory = block.block if isinstance(block, lumcv.Record) else block
    return bool(memory.size == BLOCK_SIZE and (memory[-BLOCK_SIZE // 4 :] != UNTOUCHED).any())


def record(function: str) -> Any:
    """A record laid for a function that takes one."""
    roi = (WIDTH, HEIGHT)
    typed = re.search(r"_((?:\d+[usf])+)_(C\d)", function)
    kind, channels = (typed[1], typed[2]) if typed else ("8u", "C1")
    count = int(channels[1])
    first = re.match(r"\d+[usf]", kind)[0]  # type: ignore[index]
    code = getattr(lumcv, "lumType" + first) if first != "1u" else 0
    ones = numpy.ones(9, numpy.uint8)
    made = empty_record()
    if "FilterGaussian" in function:
        init = lumcv.lumiFilterGaussianInit_L if function.endswith("_L") else lumcv.lumiFilterGaussianInit
        init(roi, 5, 1.2, lumcv.lumBorderReplicate, code, count, made, scratch())
    elif "FilterSeparable" in function:
        if kind in ("16u", "32f"):
            lumcv.lumiFilterSeparableInit_32f([1, 2, 1], [1, 2, 1], (3, 3), code, count, made)
        else:
            lumcv.lumiFilterSeparableInit_16s([1, 2, 1], [1, 2, 1], (3, 3), 16, 0, code, count, made)
    elif re.match(r"lumi(Dilate|Erode)Border", function):
        init = lumcv.lumiMorphologyBorderInit_1u_C1R if kind == "1u" else lumcv.lumiMorphologyBorderInit_8u_C1R
        init(roi, ones, (3, 3), made, scratch())
    elif re.match(r"lumi(Dilate|Erode)_", function):
        lumcv.lumiDilateInit_L(roi, ones, (3, 3), made)
    elif "Gray" in function:
        getattr(lumcv, f"lumiMorphGrayInit_{kind}_C1R")(made, roi, [0] * 9, (3, 3), (1, 1))
    elif re.match(r"lumiMorph\w+_L$", function):
        lumcv.lumiMorphInit_L(roi, ones, (3, 3), code, count, made)
    elif "Morph" in function:
        init = lumcv.lumiMorphAdvInit_1u_C1R if kind == "1u" else lumcv.lumiMorphAdvInit_8u_C1R
        init(roi, ones, (3, 3), made, scratch())
    elif "Haar" in function:
        suffix = "32s" if "_32s_" in function or function.endswith("_32s") else "32f"
        rectangles = numpy.array([[0, 0, 8, 8], [4, 0, 4, 8]], numpy.int32)
        init = getattr(lumcv, f"lumiHaarClassifierInit_{suffix}")
        init(made, rectangles, [1, -2], [-56], [1], [0], [2], 1)
    elif "FastN" in function:
        lumcv.lumiFastNInit(roi, 3, 9, 16, FAST_MODE, 20.0, lumcv.lumType8u, 1, made)
    elif "HoughProb" in function:
        lumcv.lumiHoughProbLineInit_8u32f_C1R(roi, (1.0, 0.05), 0, made)
    elif "FGMM" in function:
        lumcv.lumiFGMMInit_8u_C3R(roi, 3, model(), made)
    elif "PyramidLayer" in function:
        # floats have kernels of floats, all others of 16-bit integers
        init = getattr(lumcv, re.sub(r"(Down|Up)_", r"\1Init_", function))
        extra = (scratch(),) if "Down" in function else ()
        made = init(roi, 2.0, [1, 4, 6, 4, 1], 5, 2, made, *extra)
    elif "OpticalFlow" in function:
        made = getattr(lumcv, function.replace("LK_", "LKInit_"))(roi, 5, 0, made)
    elif "Inpaint" in function:
        mask = numpy.zeros((HEIGHT, WIDTH), numpy.uint8)
        mask[8:11, 9:12] = 1
        far = mask.astype(numpy.float32)
        init = getattr(lumcv, function.replace("Inpaint_", "InpaintInit_"))
        made = init(far, mask, 3.0, lumcv.lumInpaintByFront, made, scratch())
    else:
        raise KeyError(f"no record is known for {function}")
    return made


KEPT = []  # what pyramids point to


def pyramid(function: str) -> Any:
    """A pyramid of one level."""
    kind = {"8u": "uint8", "16u": "uint16", "32f": "float32"}[function.split("_")[1]]
    image = numpy.random.default_rng(2).integers(0, 100, (HEIGHT, WIDTH)).astype(kind)
    made = lumcv.lumiPyramidInit(1, (WIDTH, HEIGHT), 2.0, lumcv.Record(4096), scratch())
    view = made.view(lumcv.LumiPyramidRecord)
    view.ppLayers[0] = image.ctypes.data
    view.pLayerSteps[0] = image.strides[0]
    KEPT[:] = KEPT[-8:] + [image]
    return made


def valid(function: str) -> Dict[str, Any]:
    """Arguments by name that the function takes, with images larger than the ROI."""
    arguments: Dict[str, Any] = {}
    for parameter in parameters_of(function):
        name, role = parameter.name, parameter.role
        if role is Role.IMAGE:
            arguments[name] = pixels(parameter, HEIGHT * 2 + MARGIN, WIDTH * 2 + MARGIN)
        elif role is Role.ROWS:
            arguments[name] = list(pixels(parameter, HEIGHT + 4, WIDTH))
        elif role is Role.ROI:
            arguments[name] = size(function, name)
        elif role is Role.STRUCTURE:
            arguments[name] = STRUCTURES.get(name, (WIDTH, HEIGHT))
        elif role in (Role.VALUE, Role.COUNT):
            value = number(function, name)
            arguments[name] = float(value) if parameter.kind in ("float", "double") else int(value)
        elif role is Role.ARRAY:
            arguments[name] = array(function, parameter)
        elif role is Role.POINTED:
            arguments[name] = model() if name == "pModel" else pyramid(function)
        elif role is Role.BLOCK:
            laid = parameter.kind != "uint8_t" and "Init" not in function
            arguments[name] = record(function) if laid else scratch() if name == "pBuffer" else empty_record()
    return arguments
