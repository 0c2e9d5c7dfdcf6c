"""The examples in docstrings and in README do what they show."""

import doctest
import os
import pathlib
import re

import pytest

import zqpaths
import zqpaths.dask
import zqpaths.torch
from conftest import THREE

ROOT = pathlib.Path(__file__).resolve().parents[2]
OPTIONS = doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE


def members(one):
    """All that a class or the package shows, with a docstring of its own."""
    for name in getattr(one, "__all__", None) or sorted(vars(one)):
        member = getattr(one, name)
        if name.startswith("__") or not getattr(member, "__doc__", None):
            continue
        yield f"{one.__name__}.{name}", member
        if isinstance(member, type):
            yield from members(member)


DOCUMENTED = dict([("zqpaths", zqpaths), *members(zqpaths),
                   ("zqpaths.torch", zqpaths.torch), *members(zqpaths.torch),
                   ("zqpaths.dask", zqpaths.dask), *members(zqpaths.dask)])


@pytest.mark.parametrize("name", DOCUMENTED)
def test_examples(name, make_set, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    s = make_set(THREE)
    text = DOCUMENTED[name].__doc__
    test = doctest.DocTestParser().get_doctest(text, {"zqpaths": zqpaths, "s": s}, name, None, None)
    report = []
    doctest.DocTestRunner(optionflags=OPTIONS).run(test, out=report.append)
    assert not report, "".join(report)


def test_every_part_has_an_example():
    with_examples = {name for name, one in DOCUMENTED.items() if ">>> " in one.__doc__}
    assert {"zqpaths", "zqpaths.torch", "zqpaths.open", "zqpaths.index", "zqpaths.merge",
            "zqpaths.Writer", "zqpaths.Selection", "zqpaths.dask", "zqpaths.dask.bag",
            "zqpaths.dask.array_of_numbers", "zqpaths.dask.index", "zqpaths.dask.Partition",
            "PathSequence.take", "PathSequence.index", "PathSequence.count", "PathSet.find",
            "PathSet.under", "PathSet.sample", "PathSet.split", "PathSet.verify"} <= with_examples


def test_readme(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    blocks = re.findall(r"```python\n(.*?)```", (ROOT / "README.md").read_text(), re.DOTALL)
    assert blocks
    for block in blocks:
        test = doctest.DocTestParser().get_doctest(block, {}, "README.md", None, None)
        report = []
        doctest.DocTestRunner(optionflags=OPTIONS).run(test, out=report.append)
        assert test.examples and not report, "".join(report)
