"""The blocks that an operation of several stages works in."""

from __future__ import annotations

from typing import TYPE_CHECKING, NoReturn, Optional, Tuple, Type, TypeVar

import numpy

if TYPE_CHECKING:
    from numpy.typing import NDArray

Viewed = TypeVar("Viewed")


class Record:
    """A block for a record: what an Init lays, and apply calls take.

    A record points into itself, so it cannot be copied, pickled or sent to another process; lay it where it is used.
    `block` is its memory, `address` where the record stands in it.
    """

    __slots__ = ("block", "address", "laid", "border", "reach", "__weakref__")

    def __init__(self, size: int, block: Optional[NDArray[numpy.uint8]] = None) -> None:
        self.block = numpy.empty(size, numpy.uint8) if block is None else block
        self.address: int = self.block.__array_interface__["data"][0]
        # what the Init that laid it was given: its name, the border, and how far the filter reaches beyond a pixel
        self.laid: Optional[str] = None
        self.border: Optional[int] = None
        self.reach: Optional[Tuple[int, int, int, int]] = None

    def view(self, structure: Type[Viewed]) -> Viewed:
        """The record as a structure, such as `record.view(lumcv.LumiPyramidRecord)`; keep the record meanwhile."""
        return structure.from_address(self.address)  # type: ignore[attr-defined]

    def __len__(self) -> int:
        return self.block.size

    def __repr__(self) -> str:
        return f"<lumcv.Record of {self.block.size} bytes{', laid by ' + self.laid if self.laid else ''}>"

    def _refuse(self, *_: object) -> NoReturn:
        raise TypeError("a record points into itself and cannot be copied or sent elsewhere: lay another one")

    __copy__ = __deepcopy__ = __reduce__ = __reduce_ex__ = _refuse
