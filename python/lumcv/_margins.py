"""How far an operation reads beyond the ROI on the sides that a border flag gives it."""

from __future__ import annotations

import re
from typing import Any, Dict, Optional, Tuple

import numpy

from ._table import CONSTANTS

Margins = Tuple[int, int, int, int]

LEFT, TOP, RIGHT, BOTTOM = (CONSTANTS[f"lumBorderInMem{side}"][0] for side in ("Left", "Top", "Right", "Bottom"))


def laid_reach(init: str, values: Dict[str, Any]) -> Optional[Margins]:
    """What a record says about it, from the arguments of the Init that lays it; None if nothing."""
    if init.startswith("lumiFilterGaussianInit"):
        radius = values["kernelSize"] // 2
        return radius, radius, radius, radius
    if init.startswith("lumiFilterSeparableInit"):
        width, height = values["kernelSize"].width, values["kernelSize"].height
        left, top = (width - 1) // 2, (height - 1) // 2
        return left, top, width - 1 - left, height - 1 - top
    if values.get("pMask") is not None and "maskSize" in values:
        # an empty element copies and looks at no other pixel, which one of 1 x 1 does not reach
        empty = not numpy.any(values["pMask"])
        x, y = (0, 0) if empty else (values["maskSize"].width // 2, values["maskSize"].height // 2)
        return x, y, x, y
    return None


def reach(function: str, values: Dict[str, Any]) -> Optional[Margins]:
    """The pixels that a call needs left of, above, right of and below each pixel; None if nothing here tells.

    Fixed masks and kernels stand among the arguments; of other filters the Record remembers with what it was laid.
    """
    for name in ("mask", "filterMask", "maskSize"):
        if values.get(name) in (33, 55):
            radius = 1 if values[name] == 33 else 2
            return radius, radius, radius, radius
    if "apertureSize" in values:
        radius = values["apertureSize"] // 2
        return radius, radius, radius, radius
    if "xAnchor" in values:
        return values["xAnchor"], 0, values["kernelSize"] - 1 - values["xAnchor"], 0
    found: Optional[Margins] = getattr(values.get("pSpec"), "reach", None)
    if found and re.match(r"lumiMorph(Open|Close|Tophat|Blackhat)_.*_L$", function) and not values["borderType"] >> 8:
        # two passes, and the first covers what the second needs
        left, top, right, bottom = found
        return 2 * left, 2 * top, 2 * right, 2 * bottom
    return found


def flagged(border: int, margins: Margins) -> Margins:
    """The margins on the sides whose flags are set."""
    left, top, right, bottom = margins
    return (
        left if border & LEFT else 0,
        top if border & TOP else 0,
        right if border & RIGHT else 0,
        bottom if border & BOTTOM else 0,
    )


def in_memory(border: int) -> bool:
    """Whether a border that the library takes flags a side."""
    return border & 0xF0 != 0 and (border & 0xF in (1, 3, 5, 6) or border & 0xFF == 0xF0)
