"""What each parameter of a function stands for in Python.

Names and types of the headers are regular, so rules derive nearly all of it. What they cannot tell stands in the tables
below: channels that the name does not spell, images that are larger than the ROI, and the lengths of arrays.
"""

from __future__ import annotations

import re
from dataclasses import dataclass
from enum import Enum, auto
from typing import Any, Callable, Dict, List, Optional, Tuple

from ._structures import DTYPES
from ._table import FUNCTIONS, STRUCTURES, element

Values = Dict[str, Any]


class Role(Enum):
    """What a parameter is to the caller of the Python function."""

    IMAGE = auto()  # an array of rows; the stride that follows comes with it
    STEP = auto()  # the stride of the image before it; no parameter in Python
    ROWS = auto()  # a sequence of rows
    ROI = auto()  # the size of images: taken from them when it is left out
    VALUE = auto()  # a number
    STRUCTURE = auto()  # a structure by value
    POINTED = auto()  # a structure that the caller has filled
    ARRAY = auto()  # a plain array
    BLOCK = auto()  # memory for a record or scratch
    RESULT = auto()  # a number or structure that is returned
    COUNT = auto()  # a number that is changed: a parameter, and returned
    LAID = auto()  # where the address of a record goes: the record is returned


@dataclass(frozen=True)
class Parameter:
    """A parameter of a function: how it is called in C, and what becomes of it in Python."""

    name: str
    kind: str  # the type that is passed or pointed to, resolved to a C type
    role: Role
    constant: bool = False  # the function only reads what is pointed to
    channels: int = 1
    image: str = ""  # STEP: the image it belongs to

    @property
    def dtype(self) -> Any:
        """The numpy element of an image or array."""
        return DTYPES.get(self.kind)


ROI_NAMES = ("roiSize", "srcRoi", "dstRoi", "srcRoiSize", "dstRoiSize")
MEMORY_NAMES = ("pBuffer", "pSpec", "pStateMem", "pPyrMem", "pStateBuf")
# images of one channel in functions of several
SINGLE_CHANNEL = ("pMask", "pMarker", "pDist")


def weights_of_mask(values: Values, name: str) -> int:
    """How many weights a chamfer mask has."""
    size = values.get("kernelSize", values["maskType"] // 10 if "maskType" in values else 5 if "_5x5_" in name else 3)
    return 3 if size == 5 else 2


def samples(values: Values, name: str) -> int:
    """How many elements a line between two pixels has."""
    pt1, pt2 = values["pt1"], values["pt2"]
    return (max(abs(pt2.x - pt1.x), abs(pt2.y - pt1.y)) + 1) * channels_of(name)


def rectangles(values: Values, _: str) -> int:
    """How many rectangles the classifiers of a stage have together."""
    numbers = values["pNum"]
    return 0 if numbers is None else int(sum(number for number in numbers.reshape(-1)[: max(0, values["length"])]))


def mask_pixels(values: Values, _: str) -> int:
    """How many pixels a structuring element has; a list of classifiers has as many as the record knows."""
    size = values.get("maskSize")
    return max(0, size.width) * max(0, size.height) if size is not None else 1


# the lengths of arrays, by the parameter's name
LENGTHS: Dict[str, Callable[[Values, str], int]] = {
    "borderValue": lambda values, name: channels_of(name),
    "dstRoi": lambda values, name: 2,
    "pBorderValue": lambda values, name: channels_of(name),
    "pDst": lambda values, name: (
        samples(values, name) if "pt1" in values else values["maxLen"] if "maxLen" in values else values["kernelSize"]
    ),
    "pError": lambda values, name: values["numFeat"],
    "pFeature": rectangles,
    "pKernel": lambda values, name: values["kernelSize"],
    "pKernelX": lambda values, name: values["kernelSize"].width,
    "pKernelY": lambda values, name: values["kernelSize"].height,
    "pLine": lambda values, name: values["maxLineCount"] * (4 if "ProbLine" in name else 1),
    "pMask": mask_pixels,
    "pMaxDelta": lambda values, name: channels_of(name),
    "pMetrics": weights_of_mask,
    "pMinDelta": lambda values, name: channels_of(name),
    "pNewVal": lambda values, name: channels_of(name),
    "pNext": lambda values, name: 2 * values["numFeat"],
    "pNum": lambda values, name: values["length"],
    "pPeak": lambda values, name: values["maxPeakCount"],
    "pPrev": lambda values, name: 2 * values["numFeat"],
    "pStatus": lambda values, name: values["numFeat"],
    "pThreshold": lambda values, name: values["length"],
    "pVal1": lambda values, name: values["length"],
    "pVal2": lambda values, name: values["length"],
    "pWeight": rectangles,
}


def upright(values: Values) -> Tuple[int, int]:
    rect = values["rect"]
    return rect.x + rect.width, rect.y + rect.height


def tilted(values: Values) -> Tuple[int, int]:
    rect = values["rect"]
    return max(0, rect.x - rect.y + rect.width), rect.x + rect.y + rect.width + rect.height


# images that are larger than the ROI: function, image, and by how many columns and rows. The ROI never comes from them.
# None: nothing but the record knows how large.
Extra = Optional[Callable[[Values], Tuple[int, int]]]
EXTRAS: List[Tuple[str, str, Extra]] = [
    (r"lumi(Sqr)?Integral_", r"pDst|pSqr", lambda values: (1, 1)),
    (r"lumiTilted(Sqr)?Integral_", r"pDst|pSqr", lambda values: (2, 2)),
    (r"lumiCopySubpix_", r"pSrc", lambda values: (1, 1)),
    (r"lumiRectStdDev_", r"pSrc|pSqr", upright),
    (r"lumiTiltedRectStdDev_", r"pSrc|pSqr", tilted),
    (r"lumiApply(Mixed)?HaarClassifier_", r"pSrc|pTilt", lambda values: (0, 0)),
    (r"lumiFastN_", r"pSrc", None),
]


def extra_of(function: str, image: str) -> Tuple[bool, Extra]:
    """Whether an image's size differs from the ROI's, and by how much."""
    for functions, images, extra in EXTRAS:
        if re.match(functions, function) and re.fullmatch(images, image):
            return True, extra
    return False, None


def channels_of(function: str, image: str = "") -> int:
    """The channels of an image, or those that a function works on."""
    if image in SINGLE_CHANNEL or function.startswith("lumiFGMMForeground") and image == "pDst":
        return 1
    if function.startswith("lumiEigenValsVecs") and image == "pDst":
        return 6
    letters = re.search(r"_C(\d)(?:C(\d))?", function)
    if not letters:
        return 1
    return int(letters[2] if letters[2] and image == "pDst" else letters[1])


def roi_of(function: str, image: str) -> str:
    """The size parameter that an image of a function is measured by."""
    names = [name for name, _ in FUNCTIONS[function]["parameters"] if name in ROI_NAMES]
    if len(names) == 2:
        return names[0] if image.startswith("pSrc") else names[1]
    return names[0]


def parameters_of(function: str) -> List[Parameter]:
    """The parameters of a function in C's order, with their roles."""
    listed = FUNCTIONS[function]["parameters"]
    parameters: List[Parameter] = []
    for index, (name, declared) in enumerate(listed):
        constant = declared.startswith("const ")
        array = declared.endswith("]")
        pointed = re.sub(r"^const |\[\d+\]$", "", declared)
        stars = len(pointed) - len(pointed.rstrip("*"))
        kind = element(pointed.rstrip("*").replace("* const", ""))
        follower = listed[index + 1][0] if index + 1 < len(listed) else ""
        opaque = kind not in STRUCTURES and kind not in DTYPES
        if "* const*" in declared:
            role = Role.ROWS
            constant = name == "ppSrc"
        elif stars == 2:
            role = Role.LAID
        elif stars == 0 and not array:
            if name.endswith(("Step", "step")) and parameters and parameters[-1].role is Role.IMAGE:
                parameters.append(Parameter(name, kind, Role.STEP, image=parameters[-1].name))
                continue
            role = Role.ROI if name in ROI_NAMES else Role.STRUCTURE if kind in STRUCTURES else Role.VALUE
        elif not array and follower.endswith(("Step", "step")) and kind in DTYPES:
            role = Role.IMAGE
        elif opaque or (kind == "uint8_t" and name in MEMORY_NAMES):
            role = Role.BLOCK
        elif kind in ("LumFGMMModel", "LumiPyramidRecord"):
            role = Role.POINTED
        elif name == "pPositive":
            role = Role.COUNT
        elif name in LENGTHS:
            role = Role.ARRAY
        else:
            role = Role.RESULT
        parameters.append(Parameter(name, kind, role, constant, channels_of(function, name)))
    if not any(parameter.role in (Role.IMAGE, Role.ROWS) for parameter in parameters):
        # a query's size belongs to no image: it is a structure like any other
        parameters = [
            Parameter(p.name, p.kind, Role.STRUCTURE) if p.role is Role.ROI else p for p in parameters
        ]
    return parameters
