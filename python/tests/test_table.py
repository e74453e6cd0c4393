"""The table is what the headers say, all of it, and the types in it are those that a C compiler sees."""

import ctypes
import shutil
import subprocess
import sys
from pathlib import Path

import lumcv
import pytest
from lumcv._structures import CLASSES, c_type
from lumcv._table import CONSTANTS, FUNCTIONS, STRUCTURES, TABLE, described

PACKAGE = Path(__file__).resolve().parent.parent
REPOSITORY = PACKAGE.parent
COMPILER = shutil.which("cc") or shutil.which("gcc") or shutil.which("clang")


def test_generated_files_are_what_the_headers_give() -> None:
    done = subprocess.run(
        [sys.executable, PACKAGE / "tools" / "generate.py", "--check"], stdout=subprocess.PIPE, text=True, check=False
    )
    assert done.returncode == 0, done.stdout


def test_holds_every_export() -> None:
    exports = (REPOSITORY / "tests" / "product" / "exports.txt").read_text().split()
    assert sorted(FUNCTIONS) == sorted(exports)


def test_says_something_about_everything() -> None:
    for function, entry in FUNCTIONS.items():
        assert entry["brief"] and entry["header"] and entry["group"], function
        about = described(function, "about")
        for name, _ in entry["parameters"]:
            assert about.get(name), f"{function}: {name}"
        if entry["result"] == "LumStatus":
            statuses = described(function, "statuses")
            assert "lumOk" in statuses, function
            assert set(statuses) <= set(CONSTANTS), function
    for structure in STRUCTURES.values():
        assert structure["about"] and all(about for _, _, about in structure["fields"])
    assert all(about for _, about in CONSTANTS.values())


def pointed(declared: str) -> str:
    """A parameter's type as C writes it without a name."""
    return declared.split("[")[0] + ("*" if "[" in declared else "")


@pytest.mark.skipif(COMPILER is None, reason="takes a C compiler")
def test_compiler_sees_the_same() -> None:
    lines = ["#include <lumcv/lumcv.h>", "#include <stddef.h>", "#define SAME(what) _Static_assert(what, #what)"]
    for function, entry in FUNCTIONS.items():
        parameters = ", ".join(pointed(kind) for _, kind in entry["parameters"]) or "void"
        lines.append(
            f"SAME(__builtin_types_compatible_p(__typeof__(&{function}), {entry['result']} (*)({parameters})));"
        )
    for constant, (value, _) in CONSTANTS.items():
        lines.append(f"SAME({constant} == {value});")
    for name in TABLE["scalars"]:
        kind = c_type(name)
        lines.append(f"SAME(sizeof({name}) == {ctypes.sizeof(kind)});")
        lines.append(f"SAME(__builtin_types_compatible_p({name}, {TABLE['scalars'][name]}));")
    for name, structure in CLASSES.items():
        lines.append(f"SAME(sizeof({name}) == {ctypes.sizeof(structure)});")
        for field, kind, _ in STRUCTURES[name]["fields"]:
            place = getattr(structure, field)
            lines.append(f"SAME(offsetof({name}, {field}) == {place.offset});")
            lines.append(f"SAME(sizeof((({name}*)0)->{field}) == {place.size});")
            if "[" not in kind:
                lines.append(f"SAME(__builtin_types_compatible_p(__typeof__((({name}*)0)->{field}), {kind}));")
    assert COMPILER
    done = subprocess.run(
        [COMPILER, "-std=c11", "-fsyntax-only", f"-I{REPOSITORY / 'include'}", "-x", "c", "-"],
        input="\n".join(lines) + "\n",
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        check=False,
    )
    assert done.returncode == 0, done.stdout[:4000]


def test_no_enumerator_is_missing() -> None:
    """As many constants as the headers have lines that look like one."""
    text = "".join(path.read_text() for path in (REPOSITORY / "include" / "lumcv").glob("*.h"))
    assert sum(1 for line in text.splitlines() if line.startswith("    lum") and " = " in line) == len(CONSTANTS)
    assert text.count("\ntypedef struct ") - text.count(";\n") <= len(STRUCTURES)


def test_names_are_those_of_the_headers() -> None:
    assert lumcv.lumOk == 0 and lumcv.lumErrInPlace == -9998 and lumcv.lumBorderInMem == 0xF0
    assert lumcv.LumiRect(1, 2, 3, 4) == (1, 2, 3, 4)
    assert repr(lumcv.LumiPoint(5, 6)) == "LumiPoint(x=5, y=6)"
