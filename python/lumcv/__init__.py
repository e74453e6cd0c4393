"""lumcv for numpy: every function of the library, on arrays, without a copy.

    >>> import lumcv, numpy
    >>> frame = numpy.full((480, 640), 7, numpy.uint8)
    >>> total = numpy.zeros((480, 640), numpy.float32)
    >>> lumcv.lumiAdd_8u32f_C1IR(frame, total)
    >>> total[0, 0]
    7.0

Every export has its own name here. An array stands for a pointer and a stride: an image is an array of shape (height,
width), or (height, width, channels), of exactly the element type that the name tells; a part of an image is a view.
Nothing is converted or copied. What the library writes through a pointer to a number or structure is returned. Sizes
of images may be left out. See the README of the package, and help() of each function.
"""

from __future__ import annotations

from typing import Any, Callable, List

import numpy

from ._export import make_export
from ._library import LumcvError, LumcvWarning, library
from ._record import Record
from ._roles import Role, parameters_of
from ._structures import CLASSES
from ._table import CONSTANTS, FUNCTIONS
from ._version import VERSION

__version__: str = VERSION

globals().update({name: value for name, (value, _) in CONSTANTS.items()})
globals().update(CLASSES)

__all__ = ["LumcvError", "LumcvWarning", "Record", "blocks", "library", *CLASSES, *CONSTANTS, *FUNCTIONS]


def __getattr__(name: str) -> Any:
    if name not in FUNCTIONS:
        raise AttributeError(f"module 'lumcv' has no attribute {name!r}")
    # made at first use, and found without this function from then on
    function = globals()[name] = make_export(name)
    return function


def __dir__() -> List[str]:
    return sorted({*globals(), *FUNCTIONS})


def blocks(query: Callable[..., Any], *arguments: Any, **named: Any) -> Any:
    """Memory of the sizes that a query tells: a Record for each record, an array of bytes for each scratch.

    Takes the query and its arguments. Returns the blocks in the order of the sizes, or the block if there is one.

        >>> import lumcv
        >>> spec, scratch = lumcv.blocks(lumcv.lumiFilterGaussianGetBufferSize, (640, 480), 5, lumcv.lumType8u, 1)
        >>> spec
        <lumcv.Record of 256 bytes>
        >>> scratch.dtype
        dtype('uint8')
    """
    sizes = query(*arguments, **named)
    results = [parameter.name for parameter in parameters_of(query.__name__) if parameter.role is Role.RESULT]
    if not results or not all(name.endswith("Size") for name in results):
        raise TypeError(f"{query.__name__} is no query of sizes")
    made = [
        numpy.empty(size, numpy.uint8) if "Buf" in name else Record(size)
        for name, size in zip(results, sizes if isinstance(sizes, tuple) else (sizes,))
    ]
    return made[0] if len(made) == 1 else tuple(made)
