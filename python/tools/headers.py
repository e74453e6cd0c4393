"""Reads the public headers of lumcv: what the functions, structures and constants are, and what is said about them.

The headers are regular, so a few expressions read them; tests/test_table.py lets a C compiler hold the outcome against
the headers themselves.
"""

import re
from pathlib import Path
from typing import Any, Dict, List, Optional, Tuple

Table = Dict[str, Any]

COMMENT = re.compile(r"/\*\*(.*?)\*/", re.S)
FUNCTION = re.compile(r"LUMCV_API\s+(?P<result>[\w\s*]+?)(?P<name>\w+)\((?P<parameters>[^)]*)\);")
PARAMETER = re.compile(r"(?P<type>.*?[\s*])(?P<name>\w+)(?:\[(?P<length>\d+)\])?$")
FIELD = re.compile(
    r"^\s+(?P<type>[\w\s*]+?[\s*])(?P<name>\w+)(?:\[(?P<length>\d+)\])?;\s*/\*\*<(?P<about>.*?)\*/", re.M | re.S
)
STRUCTURE = re.compile(r"typedef struct (?P<name>\w+)\s*\{(?P<body>.*?)\n\}", re.S)
ENUMERATION = re.compile(r"^enum\n\{(.*?)\n\};", re.M | re.S)
CONSTANT = re.compile(r"^\s+(?P<name>\w+) = (?P<value>-?\w+),?\s*/\*\*<(?P<about>.*?)\*/", re.M | re.S)
SCALAR = re.compile(r"^typedef (?P<type>\w+) (?P<name>Lumi?[A-Z0-9]\w*);", re.M)


def plain(text: str) -> str:
    """A piece of documentation on one line, without the marks that the reference's generator takes."""
    text = re.sub(r"\n\s*\* ?", "\n", text)
    text = re.sub(r"#(?=lum|Lum)|@ref ", "", text)
    return re.sub(r"\s+", " ", text).strip()


def paragraphs(comment: str) -> Tuple[str, Dict[str, List[Tuple[str, str]]]]:
    """The first paragraph of a comment, and what stands behind each command in it: (first word, rest)."""
    lines = [re.sub(r"^\s*\* ?", "", line) for line in comment.strip().splitlines()]
    pieces = re.split(r"(?:^|(?<=\s))@(?=(?:param|retval|return|copydetails|copydoc|see)\b)", "\n".join(lines))
    brief = plain(re.split(r"\n\s*\n", pieces[0])[0])
    commands: Dict[str, List[Tuple[str, str]]] = {}
    for piece in pieces[1:]:
        # what a paragraph says after the last command belongs to none
        command, _, rest = re.split(r"\n\s*\n", piece)[0].partition(" ")
        word, _, about = plain(rest).partition(" ")
        commands.setdefault(command, []).append((word, about))
    return brief, commands


def read_functions(header: str, text: str) -> Dict[str, Any]:
    """The functions of one header, in its order."""
    functions: Dict[str, Any] = {}
    group = ""
    comment: Optional[str] = None
    for match in re.finditer(COMMENT.pattern + "|" + FUNCTION.pattern, text, re.S):
        if match[1] is not None:
            comment = match[1]
            named = re.search(r"@defgroup (\w+)", comment)
            group = named[1] if named else group
            continue
        assert comment is not None, f"{match['name']} has no documentation"
        brief, commands = paragraphs(comment)
        parameters = []
        if match["parameters"].strip() != "void":
            for piece in re.sub(r"\s+", " ", match["parameters"]).split(","):
                parameter = PARAMETER.match(piece.strip())
                assert parameter, f"{match['name']}: {piece}"
                kind = parameter["type"].strip() + (f"[{parameter['length']}]" if parameter["length"] else "")
                parameters.append([parameter["name"], kind])
        function: Dict[str, Any] = {"header": header, "group": group, "brief": brief, "result": match["result"].strip()}
        function["parameters"] = parameters
        for command in ("copydetails", "copydoc"):
            for word, _ in commands.get(command, []):
                function["like"] = word
        for command, key in (("param", "about"), ("retval", "statuses")):
            if command in commands:
                function[key] = dict(commands[command])
        functions[match["name"]] = function
        comment = None
    return functions


def read_table(include: Path) -> Table:
    """All that the headers in a folder say."""
    table: Table = {"scalars": {}, "structures": {}, "constants": {}, "functions": {}}
    for path in sorted(include.glob("*.h")):
        text = path.read_text()
        for scalar in SCALAR.finditer(text):
            table["scalars"][scalar["name"]] = scalar["type"]
        for structure in STRUCTURE.finditer(text):
            fields = []
            for field in FIELD.finditer(structure["body"]):
                kind = field["type"].strip() + (f"[{field['length']}]" if field["length"] else "")
                fields.append([field["name"], kind, plain(field["about"])])
            comment = text[: structure.start()].rsplit("/**", 1)[1].split("*/")[0]
            table["structures"][structure["name"]] = {"about": plain(comment), "fields": fields}
        for enumeration in ENUMERATION.finditer(text):
            for constant in CONSTANT.finditer(enumeration[1] + "\n"):
                table["constants"][constant["name"]] = [int(constant["value"], 0), plain(constant["about"])]
        table["functions"].update(read_functions(path.stem, text))
    for name, function in table["functions"].items():
        like = function.get("like")
        assert like is None or like in table["functions"], f"{name} is said to be like {like}"
        if like and not function["brief"]:
            function["brief"] = table["functions"][like]["brief"]
    return table


def project_version(repository: Path) -> str:
    """The version that CMakeLists.txt gives the project."""
    match = re.search(r"project\(lumcv VERSION ([\d.]+)", (repository / "CMakeLists.txt").read_text())
    assert match, "CMakeLists.txt names no version"
    return match[1]
