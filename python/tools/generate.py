#!/usr/bin/env python3
"""Writes what the package takes from the public headers: lumcv/table.json, lumcv/_version.py and lumcv/__init__.pyi.

    tools/generate.py            writes the files
    tools/generate.py --check    tells whether they are what would be written; exit status 1 if not

All that the package knows about the library stands in the table; the stub is made of it by the package's own rules.
"""

import json
import sys
from pathlib import Path
from typing import Any, Dict, List

PACKAGE = Path(__file__).resolve().parent.parent
REPOSITORY = PACKAGE.parent
sys.path.insert(0, str(Path(__file__).resolve().parent))

import headers  # noqa: E402


def table_text(table: Dict[str, Any]) -> str:
    """The table as JSON, a line for each entry, so that a change of a header changes few lines."""
    parts = []
    for section, entries in table.items():
        lines = ",\n".join(f"{json.dumps(name)}: {json.dumps(entry)}" for name, entry in entries.items())
        parts.append(f"{json.dumps(section)}: {{\n{lines}\n}}")
    return "{\n" + ",\n".join(parts) + "\n}\n"


def hint(kind: str) -> str:
    """The type hint of a structure's field."""
    from lumcv._table import STRUCTURES, element

    if kind.endswith("]"):
        return "Any"
    if kind in STRUCTURES:
        return kind
    kind = element(kind)
    if kind.endswith("*"):
        return "bytes" if kind == "const char*" else "Any"
    return "float" if kind in ("float", "double") else "int"


def stub_text() -> str:
    """The type hints of all names of the package."""
    sys.path.insert(0, str(PACKAGE))
    from lumcv._export import signature
    from lumcv._roles import parameters_of
    from lumcv._table import CONSTANTS, FUNCTIONS, STRUCTURES

    lines: List[str] = [
        "# Written by tools/generate.py from the public headers.",
        "import ctypes",
        "from typing import Any, Callable, Iterator, Optional, Sequence, Tuple, Type, TypeVar, Union",
        "",
        "import numpy",
        "from numpy.typing import NDArray",
        "",
        "from ._library import LumcvError as LumcvError",
        "from ._library import LumcvWarning as LumcvWarning",
        "from ._library import library as library",
        "from ._record import Record as Record",
        "",
        "_Element = TypeVar(\"_Element\", bound=numpy.generic)",
        "Block = Union[Record, NDArray[numpy.uint8]]",
        "Rows = Union[NDArray[_Element], Sequence[NDArray[_Element]]]",
        "",
        "__version__: str",
        "",
        "def blocks(query: Callable[..., Any], *arguments: Any, **named: Any) -> Any: ...",
        "",
        "class _Structure(ctypes.Structure):",
        "    def __iter__(self) -> Iterator[Any]: ...",
        "    def __len__(self) -> int: ...",
        "",
    ]
    for name, structure in STRUCTURES.items():
        fields = [(field, hint(kind)) for field, kind, _ in structure["fields"]]
        lines.append(f"class {name}(_Structure):")
        lines += [f"    {field}: {kind}" for field, kind in fields]
        arguments = ", ".join(f"{field}: {kind} = ..." for field, kind in fields)
        lines += [f"    def __init__(self, {arguments}) -> None: ...", ""]
    lines += [f"{name}: int" for name in CONSTANTS]
    lines.append("")
    for name in FUNCTIONS:
        text = str(signature(name, parameters_of(name))).replace("'", "")
        text = text.replace(" = None", " = ...")
        lines.append(f"def {name}{text}: ...")
    return "\n".join(lines) + "\n"


def write(path: Path, text: str, check: bool) -> bool:
    """Writes a file, or tells whether it is as it would be written."""
    if not check:
        path.write_text(text, encoding="utf-8")
        return True
    same = path.exists() and path.read_text(encoding="utf-8") == text
    if not same:
        print(f"{path.relative_to(REPOSITORY)} is not what the headers say: run python/tools/generate.py")
    return same


def main(arguments: List[str]) -> int:
    check = arguments == ["--check"]
    if arguments and not check:
        print(__doc__)
        return 2
    table = headers.read_table(REPOSITORY / "include" / "lumcv")
    version = headers.project_version(REPOSITORY)
    same = write(PACKAGE / "lumcv" / "table.json", table_text(table), check)
    same &= write(
        PACKAGE / "lumcv" / "_version.py",
        f'"""The version of the library that this package was made with."""\n\nVERSION = "{version}"\n',
        check,
    )
    # the stub is made by the package, which reads the table
    same &= write(PACKAGE / "lumcv" / "__init__.pyi", stub_text(), check)
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
