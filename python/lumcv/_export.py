"""Makes the Python functions of the exports, from the table."""

from __future__ import annotations

import ctypes
import inspect
import warnings
from typing import Any, Callable, Dict, List, Optional, Tuple

from . import _arguments as arguments
from ._arguments import Image
from ._library import LumcvError, LumcvWarning, library
from ._margins import flagged, in_memory, laid_reach, reach
from ._record import Record
from ._roles import LENGTHS, Parameter, Role, extra_of, parameters_of, roi_of
from ._structures import CLASSES, SCALARS, Structure, c_type
from ._table import FUNCTIONS, described

Values = Dict[str, Any]

BY_VALUE = (Role.VALUE, Role.STEP)
RESULTS = (Role.RESULT, Role.COUNT, Role.LAID)


def c_argument(parameter: Parameter) -> Any:
    """The ctypes type of an argument; pointers are plain addresses."""
    if parameter.role in BY_VALUE:
        return SCALARS[parameter.kind]
    if parameter.role in (Role.STRUCTURE, Role.ROI):
        return CLASSES[parameter.kind]
    return ctypes.c_void_p


def python_parameters(parameters: List[Parameter]) -> Tuple[List[Parameter], List[Parameter]]:
    """What the Python function takes: parameters in order, and sizes that it can do without, by name only."""
    hidden = (Role.STEP, Role.ROI, Role.RESULT, Role.LAID)
    return [p for p in parameters if p.role not in hidden], [p for p in parameters if p.role is Role.ROI]


def annotation(parameter: Parameter) -> str:
    """A parameter's type hint."""
    if parameter.role is Role.VALUE:
        return "float" if parameter.kind in ("float", "double") else "int"
    if parameter.role is Role.COUNT:
        return "int"
    if parameter.role in (Role.STRUCTURE, Role.ROI):
        fields = [field[1] for field in CLASSES[parameter.kind]._fields_]
        plain = ["float" if field in (ctypes.c_float, ctypes.c_double) else "int" for field in fields]
        return f"Union[{parameter.kind}, Tuple[{', '.join(plain)}]]"
    if parameter.role is Role.POINTED:
        record = ", Record" if parameter.kind == "LumiPyramidRecord" else ""
        return f"Union[{parameter.kind}{record}, None]"
    if parameter.role is Role.BLOCK:
        return "Optional[Block]"
    if parameter.role is Role.ROWS:
        return f"Optional[Rows[numpy.{parameter.dtype}]]"
    if parameter.dtype is None:
        return "Optional[NDArray[Any]]"
    if parameter.role is Role.ARRAY and parameter.constant:
        plain_number = "float" if parameter.kind in ("float", "double") else "int"
        return f"Union[NDArray[numpy.{parameter.dtype}], Sequence[{plain_number}], None]"
    return f"Optional[NDArray[numpy.{parameter.dtype}]]"


def result_annotation(function: str, parameters: List[Parameter]) -> str:
    """The type hint of what a function returns."""
    if FUNCTIONS[function]["result"] != "LumStatus":
        return "LumLibraryVersion"
    kinds = []
    for parameter in parameters:
        if parameter.role in RESULTS:
            plain = "float" if parameter.kind in ("float", "double") else "int"
            is_structure = parameter.kind in CLASSES
            kinds.append("Record" if parameter.role is Role.LAID else parameter.kind if is_structure else plain)
    return "None" if not kinds else kinds[0] if len(kinds) == 1 else f"Tuple[{', '.join(kinds)}]"


def shape_words(parameter: Parameter) -> str:
    """What a parameter is in Python, in a few words."""
    if parameter.role is Role.IMAGE:
        shape = "(height, width)" if parameter.channels == 1 else f"(height, width, {parameter.channels})"
        return f"{parameter.dtype} array of shape {shape}"
    if parameter.role is Role.ROWS:
        return f"rows, arrays of {parameter.dtype}"
    if parameter.role is Role.ARRAY:
        return f"array of {parameter.dtype or 'numpy.dtype(lumcv.' + parameter.kind + ')'}"
    if parameter.role is Role.BLOCK:
        return "block: lumcv.Record or uint8 array"
    if parameter.role is Role.LAID:
        return "lumcv.Record"
    if parameter.role in (Role.STRUCTURE, Role.ROI, Role.POINTED) or parameter.kind in CLASSES:
        return parameter.kind
    return "float" if parameter.kind in ("float", "double") else "int"


def documentation(function: str, parameters: List[Parameter]) -> str:
    """The docstring: brief, parameters, results and statuses, as the header says them."""
    about = described(function, "about")
    entry = FUNCTIONS[function]
    lines = [entry["brief"], ""]
    taken, sizes = python_parameters(parameters)
    results = [parameter for parameter in parameters if parameter.role in RESULTS]
    if taken or sizes:
        lines.append("Parameters:")
        for parameter in taken + sizes:
            left_out = "; left out, the size of the images" if parameter.role is Role.ROI else ""
            lines.append(f"    {parameter.name} ({shape_words(parameter)}): {about.get(parameter.name, '')}{left_out}")
        lines.append("")
    if results:
        lines.append("Returns:")
        lines += [f"    {result.name} ({shape_words(result)}): {about.get(result.name, '')}" for result in results]
        lines.append("")
    statuses = described(function, "statuses")
    for heading, prefix in (("Raises LumcvError:", "lumErr"), ("Warns LumcvWarning:", "lumWrn")):
        told = [f"    {name}: {meaning}" for name, meaning in statuses.items() if name.startswith(prefix)]
        lines += [heading, *told, ""] if told else []
    lines.append(f"Declared in lumcv/{entry['header']}.h, group {entry['group']}.")
    return "\n".join(lines)


def signature(function: str, parameters: List[Parameter]) -> inspect.Signature:
    """The signature that help() shows."""
    taken, sizes = python_parameters(parameters)
    in_order = inspect.Parameter.POSITIONAL_OR_KEYWORD
    shown = [inspect.Parameter(p.name, in_order, annotation=annotation(p)) for p in taken]
    shown += [
        inspect.Parameter(
            p.name, inspect.Parameter.KEYWORD_ONLY, default=None, annotation=f"Optional[{annotation(p)}]"
        )
        for p in sizes
    ]
    return inspect.Signature(shown, return_annotation=result_annotation(function, parameters))


class Call:
    """All that one call of an export needs; what it keeps lives until the call is over."""

    def __init__(self, export: Export, values: Values) -> None:
        self.export = export
        self.values = values  # the arguments by name: numbers and structures as C has them, arrays as they came
        self.passed: Dict[str, Any] = {}  # what stands for each parameter in C
        self.kept: List[Any] = []
        self.images: Dict[str, Image] = {}
        self.rows: Dict[str, List[Any]] = {}

    def convert(self) -> None:
        """Each argument by itself."""
        for parameter in self.export.taken:
            name, role, value = parameter.name, parameter.role, self.values[parameter.name]
            passed: Any
            if role is Role.IMAGE:
                passed = None
                if value is not None:
                    image = self.images[name] = Image(parameter, value)
                    passed = image.address
            elif role is Role.BLOCK:
                kept, passed = arguments.block(parameter, value)
                self.kept.append(kept)
            elif role is Role.VALUE:
                passed = self.values[name] = arguments.number(parameter, value)
            elif role is Role.STRUCTURE:
                passed = self.values[name] = arguments.structure(parameter, value)
            elif role is Role.ARRAY:
                kept = self.values[name] = arguments.array(parameter, value)
                self.kept.append(kept)
                passed = None if kept is None else arguments.address(kept)
            elif role is Role.ROWS:
                found, passed = arguments.rows(parameter, value)
                if found is not None:
                    self.rows[name] = found
            elif role is Role.POINTED:
                kept, passed = arguments.pointed(parameter, value)
                self.kept.append(kept)
            else:  # Role.COUNT
                passed = SCALARS[parameter.kind](arguments.number(parameter, value))
            self.passed[name] = passed
        for parameter in self.export.sizes:
            given = self.values.get(parameter.name)
            size = self.measured(parameter) if given is None else arguments.structure(parameter, given)
            self.passed[parameter.name] = self.values[parameter.name] = size

    def measured(self, parameter: Parameter) -> Structure:
        """The size of the images that a size left out belongs to; they must agree."""
        function = self.export.name
        found: Optional[Image] = None
        for name in self.export.measures[parameter.name]:
            image = self.images.get(name)
            if image is None:
                continue
            if found is None:
                found = image
            elif (image.width, image.height) != (found.width, found.height):
                raise ValueError(
                    f"{function}: {name} has {image.width}x{image.height} pixels and {found.parameter.name} "
                    f"{found.width}x{found.height}: give {parameter.name} or images of one size"
                )
        if found is None:
            raise TypeError(f"{function}: {parameter.name} is missing, and no image tells it")
        return CLASSES[parameter.kind](found.width, found.height)

    def check(self) -> None:
        """What arguments must be to each other, so that nothing outside the arrays is touched."""
        function, values = self.export.name, self.values
        for name, image in self.images.items():
            roi = values[self.export.roi[name]]
            differs, extra = self.export.extras[name]
            if differs and extra is None:
                continue
            columns, more_rows = extra(values) if extra else (0, 0)
            width, height = roi.width + columns, roi.height + more_rows
            if self.export.bits:
                width = (values[name[1:].lower() + "BitOffset"] + width + 7) // 8
            if image.width < width or image.height < height:
                raise ValueError(
                    f"{function}: {name} has {image.width}x{image.height} pixels, and the call takes {width}x{height}"
                )
        for name, rows in self.rows.items():
            roi = values[self.export.roi[name]]
            needed = roi.height + (values["kernelSize"] - 1 if name == "ppSrc" else 0)
            if len(rows) < needed:
                raise ValueError(f"{function}: {name} has {len(rows)} rows, and the call takes {needed}")
            elements = roi.width * self.export.by_name[name].channels
            for row in rows[: max(0, needed)]:
                if row.size < elements:
                    raise ValueError(f"{function}: a row of {name} has {row.size} elements, the call takes {elements}")
        for parameter in self.export.arrays:
            value = values[parameter.name]
            if value is not None:
                arguments.expect_length(parameter, value, LENGTHS[parameter.name](values, function))
        border = values.get("borderType", getattr(values.get("pSpec"), "border", None))
        source = self.images.get("pSrc")
        if border and in_memory(border) and source is not None and not self.export.bits:
            margins = reach(function, values)
            if margins:
                source.expect_margins(values[self.export.roi["pSrc"]], flagged(border, margins))

    def run(self) -> Any:
        """Calls the library and returns what it found."""
        results: List[Tuple[Parameter, Any]] = []
        passed: List[Any] = []
        for parameter in self.export.parameters:
            name, role = parameter.name, parameter.role
            if role is Role.STEP:
                image = self.images.get(parameter.image)
                # a null pointer is refused whatever the stride is
                passed.append(image.step if image is not None else 0x7FFFFF00)
            elif role in (Role.RESULT, Role.LAID, Role.COUNT):
                place = self.passed[name] if role is Role.COUNT else self.export.place(parameter)
                results.append((parameter, place))
                passed.append(ctypes.byref(place))
            else:
                passed.append(self.passed[name])
        try:
            status = self.export.function(*passed)
        except ctypes.ArgumentError as error:
            raise ValueError(f"{self.export.name}: {error}") from None
        if status < 0:
            raise LumcvError(self.export.name, status)
        if status > 0:
            warnings.warn(LumcvWarning(self.export.name, status), stacklevel=3)
        self.remember()
        found = [self.found(parameter, place) for parameter, place in results]
        return None if not found else found[0] if len(found) == 1 else tuple(found)

    def found(self, parameter: Parameter, place: Any) -> Any:
        """What the library has written as a result."""
        if parameter.role is Role.LAID:
            block = self.values[self.export.memory]
            record = block if isinstance(block, Record) else Record(block.size, block)
            record.address = place.value
            record.laid = self.export.name
            return record
        return place if isinstance(place, Structure) else place.value

    def remember(self) -> None:
        """Notes in a record what it was laid with."""
        record = self.values.get("pSpec", self.values.get("pState"))
        if "Init" in self.export.name and isinstance(record, Record):
            record.laid = self.export.name
            record.border = self.values.get("borderType")
            record.reach = laid_reach(self.export.name, self.values)


class Export:
    """An export of the library: its parameters, and how it is called."""

    def __init__(self, name: str) -> None:
        self.name = name
        self.parameters = parameters_of(name)
        self.by_name = {parameter.name: parameter for parameter in self.parameters}
        self.taken, self.sizes = python_parameters(self.parameters)
        self.names = [parameter.name for parameter in self.taken]
        self.size_names = [parameter.name for parameter in self.sizes]
        images = [p.name for p in self.parameters if p.role in (Role.IMAGE, Role.ROWS)]
        self.roi = {image: roi_of(name, image) for image in images}
        self.extras = {image: extra_of(name, image) for image in images}
        # images of bits do not tell how many pixels a row has
        self.bits = "_1u_" in name
        self.measures = {
            size: [i for i in images if self.roi[i] == size and not self.extras[i][0] and not self.bits]
            for size in self.size_names
        }
        self.arrays = [parameter for parameter in self.parameters if parameter.role is Role.ARRAY]
        memory = [p.name for p in self.taken if p.role is Role.BLOCK and p.name != "pBuffer"]
        self.memory = memory[0] if memory else ""
        self.function = getattr(library(), name)
        self.function.restype = ctypes.c_int32
        self.function.argtypes = [c_argument(parameter) for parameter in self.parameters]

    @staticmethod
    def place(parameter: Parameter) -> Any:
        """Where the library writes a result."""
        if parameter.role is Role.LAID:
            return ctypes.c_void_p()
        return CLASSES[parameter.kind]() if parameter.kind in CLASSES else SCALARS[parameter.kind]()

    def bind(self, given: Tuple[Any, ...], named: Values) -> Values:
        """The arguments by name."""
        if len(given) > len(self.names):
            raise TypeError(f"{self.name}() takes {len(self.names)} arguments in order, not {len(given)}")
        values = dict(zip(self.names, given))
        for name, value in named.items():
            if name in values:
                raise TypeError(f"{self.name}() got {name} twice")
            if name not in self.by_name or (name not in self.names and name not in self.size_names):
                raise TypeError(f"{self.name}() has no parameter {name}")
            values[name] = value
        missing = [name for name in self.names if name not in values]
        if missing:
            raise TypeError(f"{self.name}() misses {', '.join(missing)}")
        return values


def make_export(name: str) -> Callable[..., Any]:
    """The Python function of an export."""
    if FUNCTIONS[name]["result"] != "LumStatus":
        return make_version(name)
    export = Export(name)

    def call(*given: Any, **named: Any) -> Any:
        pending = Call(export, export.bind(given, named))
        pending.convert()
        pending.check()
        return pending.run()

    call.export = export  # type: ignore[attr-defined]
    return dress(call, name, export.parameters)


def make_version(name: str) -> Callable[..., Any]:
    """The one export without a status: it returns a constant structure."""
    function = getattr(library(), name)
    function.argtypes = []
    function.restype = ctypes.POINTER(c_type("LumLibraryVersion"))

    def call() -> Any:
        return function().contents

    return dress(call, name, [])


def dress(call: Callable[..., Any], name: str, parameters: List[Parameter]) -> Callable[..., Any]:
    """Gives a function its name, signature and documentation."""
    call.__name__ = call.__qualname__ = name
    call.__module__ = "lumcv"
    call.__doc__ = documentation(name, parameters)
    call.__signature__ = signature(name, parameters)  # type: ignore[attr-defined]
    return call
