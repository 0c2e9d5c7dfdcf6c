"""Writing sets: what counts, and when."""

import os
import pathlib
import signal
import threading
import time

import numpy
import pytest

import zqpaths
from conftest import THREE, made_paths


def paths_in(file):
    return list(zqpaths.open(file))


def test_adds_one_path_or_many(file):
    with zqpaths.Writer(file) as writer:
        writer.add("a")
        writer.extend(["b", b"c", pathlib.PurePath("d/e")])
        writer.extend(f"f{i}" for i in range(2))
        writer.extend(numpy.array([b"g", b"hh"]))
        writer.extend(numpy.array(["é", "j"]))
        assert len(writer) == 10
    assert paths_in(file) == ["a", "b", "c", "d/e", "f0", "f1", "g", "hh", "é", "j"]


def test_takes_any_number_of_paths(many):
    paths, file = many
    assert paths_in(file) == paths


def test_takes_paths_longer_than_what_is_collected(file):
    long = ["/x" * 400_000, "b", "/y" * 400_000]
    with zqpaths.Writer(file) as writer:
        writer.extend(long)
    assert paths_in(file) == long


def test_replaces_appends_or_refuses(file):
    for mode, path in [("x", "a"), ("a", "b")]:
        with zqpaths.Writer(file, mode) as writer:
            writer.add(path)
    assert paths_in(file) == ["a", "b"]
    with pytest.raises(FileExistsError) as refusal:
        zqpaths.Writer(file, "x")
    assert refusal.value.filename == file
    with zqpaths.Writer(file, mode="w") as writer:
        writer.add("c")
    assert paths_in(file) == ["c"]


def test_appends_to_nothing(file):
    with zqpaths.Writer(file, "a") as writer:
        writer.add("a")
    assert paths_in(file) == ["a"]


def test_makes_an_empty_set(file):
    with zqpaths.Writer(file):
        pass
    s = zqpaths.open(file)
    assert len(s) == 0 and list(s) == [] and s.verify() == [] and s.sample(1) == []


def test_makes_small_sets(file, tmp_path):
    packed = str(tmp_path / "packed.zqp")
    paths = made_paths(20_000)
    for name, is_packed in [(file, False), (packed, True)]:
        with zqpaths.Writer(name, packed=is_packed) as writer:
            writer.extend(paths)
    assert os.path.getsize(packed) < os.path.getsize(file) / 2
    assert paths_in(packed) == paths
    assert zqpaths.open(packed)[777] == paths[777]


def test_keeps_the_old_set_if_an_exception_ends_it(three, file):
    with pytest.raises(RuntimeError):
        with zqpaths.Writer(file) as writer:
            writer.extend(made_paths(10_000))
            raise RuntimeError
    assert paths_in(file) == THREE
    assert os.listdir(os.path.dirname(file)) == [os.path.basename(file)]


def test_leaves_no_file_if_an_exception_ends_it(file):
    with pytest.raises(KeyError):
        with zqpaths.Writer(file) as writer:
            writer.add("a")
            raise KeyError
    assert os.listdir(os.path.dirname(file)) == []


def test_counts_when_it_is_committed(three, file):
    writer = zqpaths.Writer(file, "a")
    writer.add("d")
    assert len(writer) == 4
    assert paths_in(file) == THREE
    writer.commit()
    assert paths_in(file) == THREE + ["d"]
    for more in [lambda: writer.add("e"), lambda: writer.extend(["e"]), writer.commit]:
        with pytest.raises(zqpaths.UseError, match="committed"):
            more()
    assert paths_in(file) == THREE + ["d"]


def test_forgets_what_is_discarded(three, file):
    with zqpaths.Writer(file) as writer:
        writer.add("d")
        writer.discard()
    assert paths_in(file) == THREE
    for more in [lambda: writer.add("e"), writer.commit, writer.discard, lambda: len(writer)]:
        with pytest.raises(zqpaths.UseError, match="discarded"):
            more()


def test_forgets_what_nobody_commits(three, file):
    writer = zqpaths.Writer(file)
    writer.add("d")
    del writer
    assert paths_in(file) == THREE
    assert os.listdir(os.path.dirname(file)) == [os.path.basename(file)]


@pytest.mark.parametrize("path", ["", b"", "a\0b", b"\0"])
def test_refuses_what_cannot_be_a_path(file, path):
    with zqpaths.Writer(file) as writer:
        with pytest.raises(ValueError) as refusal:
            writer.add(path)
        assert isinstance(refusal.value, zqpaths.UseError)
        with pytest.raises(ValueError):
            writer.extend(["a", path, "b"])
        writer.add("c")
    assert paths_in(file) == ["a", "c"]


@pytest.mark.parametrize("path", [1, None, ["a"]])
def test_refuses_what_is_no_path(file, path):
    with zqpaths.Writer(file) as writer:
        with pytest.raises(TypeError):
            writer.add(path)
        with pytest.raises(TypeError):
            writer.extend(["a", path, "b"])
    assert paths_in(file) == ["a"]


@pytest.mark.parametrize("paths", ["abc", b"abc", 1, None])
def test_extends_by_paths_not_by_one(file, paths):
    with zqpaths.Writer(file) as writer:
        with pytest.raises(TypeError):
            writer.extend(paths)
    assert paths_in(file) == []


def test_refuses_a_text_that_stands_for_no_bytes(file):
    with zqpaths.Writer(file) as writer:
        with pytest.raises(UnicodeEncodeError):
            writer.add("\ud800")


def test_passes_on_what_the_iterable_raises(file):
    def paths():
        yield "a"
        yield "b"
        raise LookupError("no more")

    with zqpaths.Writer(file) as writer:
        with pytest.raises(LookupError, match="no more"):
            writer.extend(paths())
        assert len(writer) == 2
    assert paths_in(file) == ["a", "b"]


def test_may_be_extended_by_what_adds_to_it(file):
    def paths(writer):
        writer.add("first")
        yield "second"

    with zqpaths.Writer(file) as writer:
        writer.extend(paths(writer))
    assert paths_in(file) == ["first", "second"]


@pytest.mark.parametrize("mode", ["", "r", "wb", "W"])
def test_refuses_other_modes(file, mode):
    with pytest.raises(ValueError, match="none of 'w', 'a' and 'x'"):
        zqpaths.Writer(file, mode)


def test_takes_paths_of_many_threads(file):
    def add(writer, name):
        for i in range(20):
            writer.add(f"{name}/{i}")
        writer.extend(f"{name}/{i}" for i in range(20, 10_000))

    with zqpaths.Writer(file) as writer:
        threads = [threading.Thread(target=add, args=(writer, name)) for name in "abcd"]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    paths = paths_in(file)
    assert len(paths) == 40_000
    for name in "abcd":
        assert [p for p in paths if p.startswith(name)] == [f"{name}/{i}" for i in range(10_000)]


def test_ends_by_a_signal(three, file):
    def paths():
        yield from made_paths(10_000)
        os.kill(os.getpid(), signal.SIGINT)
        while True:
            yield "more"

    with pytest.raises(KeyboardInterrupt):
        with zqpaths.Writer(file) as writer:
            writer.extend(paths())
    assert paths_in(file) == THREE


def test_is_left_alone_by_a_child(three, file):
    with zqpaths.Writer(file, "a") as writer:
        writer.extend(made_paths(1000))
        child = os.fork()
        if child == 0:
            status = 1
            try:
                writer.add("x")
            except zqpaths.UseError as refusal:
                status = 0 if "belongs to the process" in str(refusal) else 2
            del writer
            os._exit(status)
        assert os.waitpid(child, 0)[1] == 0
        writer.add("y")
    assert paths_in(file) == THREE + made_paths(1000) + ["y"]
