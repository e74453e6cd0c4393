"""The table of all that the library exports, which tools/generate.py takes from the headers."""

from __future__ import annotations

import json
from pathlib import Path
from typing import Any, Dict, Tuple

TABLE: Dict[str, Any] = json.loads(Path(__file__).with_name("table.json").read_text(encoding="utf-8"))
FUNCTIONS: Dict[str, Dict[str, Any]] = TABLE["functions"]
STRUCTURES: Dict[str, Dict[str, Any]] = TABLE["structures"]
CONSTANTS: Dict[str, Tuple[int, str]] = {name: (value, about) for name, (value, about) in TABLE["constants"].items()}


def element(kind: str) -> str:
    """The C type that a type of the headers stands for: `int32_t` for `LumiBorderType`; others as they are."""
    scalars: Dict[str, str] = TABLE["scalars"]
    while kind in scalars:
        kind = scalars[kind]
    return kind


def described(name: str, key: str) -> Dict[str, str]:
    """What the headers say about a function's parameters (`about`) or statuses, with what it takes from another one."""
    function = FUNCTIONS[name]
    inherited = described(function["like"], key) if "like" in function else {}
    return {**inherited, **function.get(key, {})}
