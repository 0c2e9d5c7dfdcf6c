"""A wheel needs nothing else of ours: the library is in its module."""

import os
import pathlib
import subprocess
import sys
import zipfile

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[3]


def output_of(*arguments, **options):
    return subprocess.run(arguments, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


@pytest.fixture(scope="module")
def package(tmp_path_factory):
    """The folder of the package, unpacked somewhere."""
    folder = tmp_path_factory.mktemp("wheel")
    output_of(sys.executable, "-m", "pip", "--quiet", "wheel", "--no-build-isolation", "--no-deps",
              "--wheel-dir", folder, ROOT / "python")
    (wheel,) = folder.glob("zqpaths-*.whl")
    zipfile.ZipFile(wheel).extractall(folder / "site")
    return folder / "site" / "zqpaths"


@pytest.fixture(scope="module")
def module(package):
    (module,) = package.glob("_zqpaths*.so")
    return module


def test_has_all_of_the_package(package, module):
    sources = {path.name for path in (ROOT / "python" / "zqpaths").iterdir() if path.is_file()}
    assert {path.name for path in package.iterdir()} == sources | {module.name}


def test_works_on_its_own(package):
    code = """
import zqpaths
with zqpaths.Writer("a.zqp") as writer:
    writer.extend(["a", "b/c"])
s = zqpaths.open("a.zqp")
print(*s, s.index("b/c"), zqpaths.__file__)
"""
    environment = {**os.environ, "PYTHONPATH": str(package.parent)}
    said = output_of(sys.executable, "-c", code, cwd=package.parent, env=environment)
    assert said == f"a b/c 1 {package / '__init__.py'}\n"


def test_needs_no_library_of_ours(module):
    needs = output_of("readelf", "-d", module)
    assert "libzqpaths" not in needs and "PATH)" not in needs


def test_shows_its_entry_alone(module):
    names = output_of("nm", "-D", "--defined-only", "--format=just-symbols", module).split()
    assert names == ["PyInit__zqpaths"]
