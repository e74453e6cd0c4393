"""The package as users get it: installed without a compiler and without network, with type hints that hold."""

import os
import shutil
import subprocess
import sys
from importlib.util import find_spec
from pathlib import Path

import lumcv
import pytest

PACKAGE = Path(__file__).resolve().parent.parent


def test_version_is_the_librarys() -> None:
    text = (PACKAGE.parent / "CMakeLists.txt").read_text()
    assert f"project(lumcv VERSION {lumcv.__version__} " in text


@pytest.mark.skipif(not all(find_spec(name) for name in ("pip", "setuptools", "wheel")), reason="takes pip")
def test_installs_without_compiler_and_network(tmp_path: Path) -> None:
    source = tmp_path / "source"
    shutil.copytree(PACKAGE, source, ignore=shutil.ignore_patterns("build", "*.egg-info", "__pycache__"))
    target = tmp_path / "installed"
    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    environment["CC"] = environment["CXX"] = "/bin/false"
    command = [sys.executable, "-m", "pip", "install", "--quiet", "--no-index", "--no-build-isolation", "--no-deps"]
    done = subprocess.run(
        [*command, "--disable-pip-version-check", "--no-cache-dir", "--target", str(target), str(source)],
        env=environment,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        check=False,
    )
    assert done.returncode == 0, done.stdout
    installed = {path.name for path in (target / "lumcv").iterdir()}
    assert {"__init__.py", "__init__.pyi", "py.typed", "table.json"} <= installed
    (about,) = target.glob("lumcv-*.dist-info")
    assert f"-{lumcv.__version__}.dist-info" in about.name
    assert "Root-Is-Purelib: true" in (about / "WHEEL").read_text()
    used = subprocess.run(
        [sys.executable, "-c", "import lumcv; print(lumcv.__file__, lumcv.lumcvGetLibVersion().major)"],
        env={**environment, "PYTHONPATH": str(target)},
        cwd=tmp_path,
        stdout=subprocess.PIPE,
        text=True,
        check=False,
    )
    assert used.returncode == 0 and used.stdout.startswith(str(target)), used.stdout


@pytest.mark.skipif(find_spec("mypy") is None, reason="takes mypy")
def test_type_hints_hold(tmp_path: Path) -> None:
    """The package itself, and a user's program of which two lines are wrong."""
    user = tmp_path / "user.py"
    user.write_text(
        "import numpy\n"
        "import lumcv\n"
        "image = numpy.zeros((4, 5), numpy.uint8)\n"
        "total = numpy.zeros((4, 5), numpy.float32)\n"
        "lumcv.lumiAdd_8u32f_C1IR(image, total, roiSize=(5, 4))\n"
        "mean: float = lumcv.lumiMean_8u_C1MR(image, image)\n"
        "low, high, at, end = lumcv.lumiMinMaxIndx_8u_C1R(image)\n"
        "place: lumcv.LumiPoint = at\n"
        "lumcv.lumiAdd_8u32f_C1IR(total, total)\n"
        "size: str = lumcv.lumiFloodFillGetSize((4, 5))\n"
    )
    command = [sys.executable, "-m", "mypy", "--config-file", str(PACKAGE / "pyproject.toml")]
    done = subprocess.run(
        [*command, "--cache-dir", str(tmp_path), *(str(PACKAGE / name) for name in ("lumcv", "tools", "examples"))]
        + [str(user)],
        env={**os.environ, "MYPYPATH": str(PACKAGE)},
        stdout=subprocess.PIPE,
        text=True,
        check=False,
    )
    errors = [line for line in done.stdout.splitlines() if "error:" in line]
    assert len(errors) == 2, done.stdout
    assert all(f"user.py:{line}:" in error for line, error in zip((9, 10), errors)), done.stdout
