"""The stubs say what the module has, and type checkers understand them."""

import os
import pathlib
import subprocess
import sys

import pytest

import zqpaths

HERE = pathlib.Path(__file__).parent
PACKAGES = os.path.dirname(os.path.dirname(zqpaths.__file__))

USES = """
from typing import List
import zqpaths
import zqpaths.dask
s = zqpaths.open("data.zqp")
path: str = s[0]
paths: List[str] = s[1:]
offsets, data = s.take([1, 2], arrow_like=True)
count: int = int(offsets[-1])
b = zqpaths.open("data.zqp", as_bytes=True)
some: List[bytes] = b.take(range(3))
for one in b.find(glob="*.png"):
    one.decode()
with zqpaths.Writer("data.zqp", "a") as writer:
    writer.extend(iter(s.under("/data")))
zqpaths.index("/data", "data.zqp", progress=print)
everything = zqpaths.merge(["data.zqp", b"more.zqp"], "all.zqs", mode="w")
places: List[range] = [positions for positions, reason in everything.missing]
last: str = zqpaths.open(everything.files[-1], partial=True)[-1]
made = zqpaths.dask.index(zqpaths.dask.bag(s, npartitions=2), "x.zqs", packed=True)
first: str = made[0]
"""


@pytest.fixture(scope="module")
def run(tmp_path_factory):
    """Runs a module of mypy; what it learns of numpy it needs to learn once."""
    places = {"MYPYPATH": PACKAGES, "PYTHONPATH": PACKAGES,
              "MYPY_CACHE_DIR": str(tmp_path_factory.mktemp("cache"))}

    def run_module(folder, *arguments):
        return subprocess.run(
            [sys.executable, "-m", *arguments], cwd=folder, env={**os.environ, **places}, text=True,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    return run_module


def test_stubs_say_what_there_is(run, tmp_path):
    checked = run(tmp_path, "mypy.stubtest", "zqpaths._zqpaths", "--concise",
                  "--allowlist", str(HERE / "stubtest_allowed.txt"),
                  "--mypy-config-file", str(HERE / "mypy.ini"))
    assert checked.returncode == 0, checked.stdout


def test_package_is_typed(run, tmp_path):
    checked = run(tmp_path, "mypy", "--config-file", str(HERE / "mypy.ini"), "-p", "zqpaths")
    assert checked.returncode == 0, checked.stdout


def test_uses_are_understood(run, tmp_path):
    (tmp_path / "uses.py").write_text(USES)
    checked = run(tmp_path, "mypy", "--config-file", str(HERE / "mypy.ini"), "uses.py")
    assert checked.returncode == 0, checked.stdout


def test_wrong_uses_are_seen(run, tmp_path):
    (tmp_path / "uses.py").write_text(USES + 'wrong: bytes = s[0]\nzqpaths.Writer("x", "r")\n')
    checked = run(tmp_path, "mypy", "--config-file", str(HERE / "mypy.ini"), "uses.py")
    assert checked.stdout.count("error:") == 2, checked.stdout
