"""Each export by itself, with arguments that are right and with every kind that is wrong."""

import ctypes
import inspect
import re
import warnings
from typing import Any, Callable, Dict, List

import cases
import lumcv
import numpy
import pytest
from lumcv._roles import LENGTHS, Parameter, Role, extra_of, parameters_of, roi_of
from lumcv._table import FUNCTIONS, STRUCTURES, described

OPERATIONS = [name for name in FUNCTIONS if name != "lumcvGetLibVersion"]
POINTERS = (Role.IMAGE, Role.ROWS, Role.ARRAY, Role.BLOCK, Role.POINTED)


def each_export(test: Callable[[str], None]) -> Callable[[str], None]:
    """A test for each header, which runs a test for each of its functions: pytest takes longer than most of them."""

    @pytest.mark.parametrize("header", sorted({entry["header"] for entry in FUNCTIONS.values()}))
    def run(header: str) -> None:
        for function in OPERATIONS:
            if FUNCTIONS[function]["header"] == header:
                try:
                    test(function)
                except Exception as error:
                    raise AssertionError(f"{function}: {error}") from error

    run.__name__, run.__doc__ = test.__name__, test.__doc__
    return run


def call(function: str, arguments: Dict[str, Any]) -> Any:
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", lumcv.LumcvWarning)
        return getattr(lumcv, function)(**arguments)


def taken(function: str, *roles: Role) -> List[Parameter]:
    return [parameter for parameter in parameters_of(function) if parameter.role in roles]


@each_export
def test_takes_right_arguments(function: str) -> None:
    arguments = cases.valid(function)
    result = call(function, arguments)
    expected = taken(function, Role.RESULT, Role.COUNT, Role.LAID)
    results = () if not expected else (result,) if len(expected) == 1 else result
    assert (result is None) == (not expected)
    assert len(results) == len(expected)
    for parameter, value in zip(expected, results):
        if parameter.role is Role.LAID:
            assert isinstance(value, lumcv.Record) and value.laid == function
        elif parameter.kind in STRUCTURES:
            assert type(value).__name__ == parameter.kind
        else:
            assert isinstance(value, float if parameter.kind in ("float", "double") else int)
    for parameter in taken(function, Role.BLOCK):
        assert not cases.overrun(arguments[parameter.name])


@each_export
def test_refuses_null_as_the_header_says(function: str) -> None:
    said = described(function, "statuses").get("lumErrNullPointer", "")
    for parameter in taken(function, *POINTERS):
        about = described(function, "about").get(parameter.name, "")
        optional = re.search(r"\bor null\b|may be null|not touched without|not read without", about)
        optional = optional or f"{parameter.name}`" not in said and "a pointer" not in said
        if optional or parameter.name == "borderValue":
            continue
        with pytest.raises(lumcv.LumcvError) as caught:
            call(function, {**cases.valid(function), parameter.name: None})
        assert caught.value.name == "lumErrNullPointer", parameter.name


@each_export
def test_refuses_bad_numbers_with_a_documented_status(function: str) -> None:
    """Sizes below 1, and one number after the other far out of its range: if refused, then by a documented status."""
    documented = described(function, "statuses")
    refused = 0
    for parameter in taken(function, Role.STRUCTURE, Role.ROI, Role.VALUE):
        arguments = cases.valid(function)
        if parameter.role is Role.VALUE:
            # masks of no size and counts of nothing: but nothing that could make a call read beyond its arrays
            if parameter.name in ("srcBitOffset", "dstBitOffset", "learningRate", "dx", "dy"):
                continue
            wrong: Any = -1.0 if parameter.kind in ("float", "double") else 0 if parameter.kind[0] == "u" else -1
        elif "Size" in parameter.kind:
            wrong = (0, 5)
        else:
            continue
        try:
            call(function, {**arguments, parameter.name: wrong})
        except lumcv.LumcvError as error:
            assert error.name in documented, f"{parameter.name}: {error}"
            assert error.function == function and error.name in str(error)
            refused += 1
    if any(parameter.role is Role.ROI or parameter.name == "roiSize" for parameter in parameters_of(function)):
        assert refused, "no size was refused"


@each_export
def test_refuses_arrays_that_are_not_what_the_name_says(function: str) -> None:
    arguments = cases.valid(function)

    def refuses(error: Any, name: str, value: Any) -> None:
        with pytest.raises(error, match=name):
            call(function, {**arguments, name: value})

    for image in taken(function, Role.IMAGE):
        name, right = image.name, arguments[image.name]
        refuses(TypeError, name, right.astype(numpy.complex64))
        refuses(TypeError, name, right.astype(right.dtype.newbyteorder()) if right.itemsize > 1 else right.view(bool))
        refuses(TypeError, name, right.tolist())
        refuses(ValueError, name, numpy.zeros((*right.shape[:2], 7), right.dtype))
        refuses(ValueError, name, right[::-1])
        refuses(ValueError, name, right[:, ::-1])
        refuses(ValueError, name, right[:, ::2])
        refuses(ValueError, name, right.swapaxes(0, 1))
        refuses(ValueError, name, numpy.broadcast_to(right[:1], right.shape))
        if extra_of(function, name) != (True, None):
            width, height = arguments[roi_of(function, name)]
            refuses(ValueError, name, right[: height - 1])
            refuses(ValueError, name, right[:, : 2 if "_1u_" in function else width - 1])
        if right.itemsize > 1:
            shifted = numpy.zeros(right.nbytes + 1, numpy.uint8)[1:].view(right.dtype).reshape(right.shape)
            refuses(ValueError, name, shifted)
        refused = right.copy()
        refused.flags.writeable = False
        if image.constant:
            call(function, {**cases.valid(function), name: refused})
        else:
            refuses(ValueError, name, refused)
    for parameter in taken(function, Role.ARRAY):
        name, right = parameter.name, arguments[parameter.name]
        refuses(TypeError, name, numpy.zeros(right.shape, numpy.complex64))
        refuses(ValueError, name, right[:0])
        refuses(ValueError, name, numpy.repeat(right, 2, axis=0)[::2])
    for block in taken(function, Role.BLOCK):
        refuses(TypeError, block.name, bytearray(100))
        refuses(TypeError, block.name, numpy.zeros(100, numpy.int8))
        refuses(ValueError, block.name, numpy.zeros(100, numpy.uint8)[::2])
    for rows in taken(function, Role.ROWS):
        right = arguments[rows.name]
        refuses(ValueError, rows.name, right[: cases.HEIGHT - 1])
        refuses(ValueError, rows.name, [row[:-1] for row in right])
        refuses(ValueError, rows.name, [numpy.repeat(row, 2, axis=0)[::2] for row in right])
    for value in taken(function, Role.VALUE):
        refuses(TypeError, value.name, "text")
        if value.kind not in ("float", "double"):
            refuses(ValueError, value.name, 1 << 40)
            refuses(TypeError, value.name, 1.5)
    for structure in taken(function, Role.STRUCTURE, Role.ROI):
        refuses(TypeError, structure.name, (1, 2, 3))
        refuses(TypeError, structure.name, 5)


@each_export
def test_passes_addresses_and_strides_of_the_arrays_themselves(function: str) -> None:
    """What reaches C is what the arrays say of themselves: nothing has been copied."""
    export = getattr(lumcv, function).export
    arguments = cases.valid(function)
    for image in taken(function, Role.IMAGE):
        # parts of larger images
        arguments[image.name] = arguments[image.name][3:, 2:]
    places = {
        block.name: value.address if isinstance(value, lumcv.Record) else value.ctypes.data
        for block in taken(function, Role.BLOCK)
        for value in [arguments[block.name]]
    }
    caught: List[Any] = []
    original = export.function
    try:
        export.function = lambda *passed: caught.append(passed) or 0
        call(function, arguments)
    finally:
        export.function = original
    (passed,) = caught
    assert len(passed) == len(FUNCTIONS[function]["parameters"])
    for parameter, value in zip(export.parameters, passed):
        given = arguments.get(parameter.name)
        if parameter.role in (Role.IMAGE, Role.ARRAY):
            assert value == given.ctypes.data
        elif parameter.role is Role.STEP:
            assert value == arguments[parameter.image].strides[0]
        elif parameter.role is Role.BLOCK:
            assert value == places[parameter.name]
        elif parameter.role is Role.ROWS:
            assert list(value) == [row.ctypes.data for row in given]
        elif parameter.role in (Role.STRUCTURE, Role.ROI):
            assert tuple(value) == pytest.approx(tuple(given))
        elif parameter.role is Role.VALUE:
            assert value == given


@each_export
def test_tells_what_it_is(function: str) -> None:
    export = getattr(lumcv, function)
    assert export.__name__ == function and function in dir(lumcv) and function in lumcv.__all__
    assert export.__doc__.startswith(FUNCTIONS[function]["brief"])
    for parameter in inspect.signature(export).parameters.values():
        line = re.search(rf"^    {parameter.name} \(.+?\): (.*)", export.__doc__, re.M)
        assert line and line[1], f"{parameter.name} has no documentation"
        assert parameter.annotation is not inspect.Parameter.empty


def test_lengths_are_told_for_every_array() -> None:
    for function in OPERATIONS:
        for parameter in taken(function, Role.ARRAY):
            assert parameter.name in LENGTHS
        for image in taken(function, Role.IMAGE):
            assert roi_of(function, image.name)


def test_version_is_the_record_of_the_library() -> None:
    version = lumcv.lumcvGetLibVersion()
    assert isinstance(version, lumcv.LumLibraryVersion)
    assert version.Version.startswith(b"%d.%d.%d" % (version.major, version.minor, version.majorBuild))
    assert ctypes.sizeof(version) == 48
