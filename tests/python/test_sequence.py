"""A set is a sequence: whatever a list of the same paths gives, it gives."""

import collections.abc
import os
import pathlib
import types

import numpy
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import zqpaths
from conftest import THREE, as_text, path_bytes, path_lists

bounds = st.none() | st.integers(-40, 40)
relaxed = settings(suppress_health_check=[HealthCheck.function_scoped_fixture])


@relaxed
@given(path_lists, st.booleans(), st.booleans())
def test_is_the_list_that_it_was_made_of(make_set, paths, as_bytes, packed):
    expected = paths if as_bytes else as_text(paths)
    s = make_set(paths, as_bytes=as_bytes, packed=packed)
    assert len(s) == len(expected)
    assert list(s) == expected
    assert list(reversed(s)) == expected[::-1]
    assert [s[i] for i in range(-len(s), len(s))] == expected + expected
    assert bool(s) == bool(expected)


@relaxed
@given(path_lists, bounds, bounds, bounds.filter(lambda step: step != 0))
def test_slices_as_a_list(make_set, paths, start, stop, step):
    s = make_set(paths)
    assert s[start:stop:step] == as_text(paths)[start:stop:step]


@relaxed
@given(path_lists, path_bytes, st.integers(-40, 40), st.integers(-40, 40))
def test_looks_up_as_a_list_searches(make_set, paths, other, start, stop):
    s = make_set(paths, as_bytes=True)
    for path in set(paths) | {other}:
        assert (path in s) == (path in paths)
        assert s.count(path) == paths.count(path)
        for arguments in [(), (start,), (start, stop)]:
            try:
                expected = paths.index(path, *arguments)
            except ValueError:
                with pytest.raises(ValueError):
                    s.index(path, *arguments)
            else:
                assert s.index(path, *arguments) == expected


@relaxed
@given(path_lists.filter(bool), st.data())
def test_takes_as_a_list_is_indexed(make_set, paths, data):
    indices = data.draw(st.lists(st.integers(-len(paths), len(paths) - 1), max_size=40))
    s = make_set(paths)
    expected = [as_text(paths)[i] for i in indices]
    assert s.take(indices) == expected
    assert s.take(tuple(indices)) == expected
    assert s.take(iter(indices)) == expected
    assert s.take(numpy.array(indices, dtype=numpy.int64)) == expected
    offsets, data_bytes = s.take(indices, arrow_like=True)
    assert (offsets.dtype, data_bytes.dtype) == (numpy.int64, numpy.uint8)
    text = data_bytes.tobytes()
    assert [text[a:b] for a, b in zip(offsets, offsets[1:])] == [paths[i] for i in indices]
    assert (offsets[0], offsets[-1]) == (0, len(text))


def test_is_a_sequence(three):
    assert isinstance(three, collections.abc.Sequence)
    assert isinstance(three.find("a"), collections.abc.Sequence)
    match three:
        case [first, *_]:
            assert first == THREE[0]


def test_can_be_named_with_the_type_of_its_paths():
    assert isinstance(zqpaths.PathSet[str], types.GenericAlias)


@pytest.mark.parametrize("index", [3, -4, 2**63, -(2**63) - 1])
def test_refuses_a_position_that_there_is_not(three, index):
    with pytest.raises(IndexError):
        three[index]


@pytest.mark.parametrize("index", ["0", 0.0, None])
def test_refuses_what_is_no_position(three, index):
    with pytest.raises(TypeError):
        three[index]


def test_takes_positions_of_every_kind_of_integer(three):
    assert three[numpy.uint8(1)] == THREE[1]
    for kind in "bBhHiIlLqQ":
        assert three.take(numpy.array([2, 0], dtype=kind)) == [THREE[2], THREE[0]]
    assert three.take(numpy.array([-1, 0], dtype=numpy.int8)) == [THREE[2], THREE[0]]
    assert three.take(numpy.array([2, 0], dtype=">i4")) == [THREE[2], THREE[0]]
    assert three.take(numpy.arange(3)[::-2]) == [THREE[2], THREE[0]]
    assert three.take(range(-1, 1)) == [THREE[2], THREE[0]]
    assert three.take([]) == three.take(numpy.array([])) == []


def test_takes_nothing_where_one_position_is_wrong(three):
    for wrong in [[0, 3], range(4), numpy.array([0, -4]), numpy.array([2**64 - 1], numpy.uint64)]:
        with pytest.raises(IndexError):
            three.take(wrong)
        with pytest.raises(IndexError):
            three.take(wrong, arrow_like=True)


def test_takes_no_mask_and_no_fractions(three):
    with pytest.raises(TypeError, match="flatnonzero"):
        three.take(numpy.array([True, False, True]))
    for wrong in [numpy.array([0.0]), numpy.array([[0, 1]]), ["0"], "0", 0]:
        with pytest.raises(TypeError):
            three.take(wrong)


def test_gives_arrays_for_nothing(three):
    offsets, data = three.take([], arrow_like=True)
    assert offsets.tolist() == [0] and data.tolist() == []


def test_keeps_arrays_after_it_is_gone(make_set):
    offsets, data = make_set(THREE).take([1], arrow_like=True)
    assert data[: offsets[1]].tobytes() == b"/data/b.txt"


def test_reads_many_paths_in_pieces(many):
    paths, file = many
    s = zqpaths.open(file)
    assert list(s) == paths
    assert s[::-1] == paths[::-1]
    backwards = range(len(paths) - 1, -1, -1)
    assert s.take(backwards) == paths[::-1]
    offsets, data = s.take(backwards, arrow_like=True)
    assert data.tobytes().decode() == "".join(paths[::-1])
    assert numpy.diff(offsets).tolist() == [len(path) for path in paths[::-1]]


def test_goes_through_its_paths_any_number_of_times_at_once(many):
    paths, file = many
    s = zqpaths.open(file)
    one, other = iter(s), iter(s)
    assert [next(one) for _ in range(100)] == paths[:100]
    assert next(other) == paths[0]
    assert one.__length_hint__() == len(paths) - 100
    assert list(one) == paths[100:]
    assert one.__length_hint__() == 0
    assert next(one, "end") == "end"
    assert iter(other) is other


def test_gives_names_that_are_no_utf_8_as_the_system_does(make_set, tmp_path):
    name = os.fsencode(tmp_path) + b"/caf\xe9"
    with open(name, "w") as made:
        made.write("here")
    s = make_set([name])
    with open(s[0]) as found:
        assert found.read() == "here"
    assert zqpaths.open(s.file, as_bytes=True)[0] == name


def test_finds_a_path_in_any_form(three):
    for path in [THREE[1], THREE[1].encode(), pathlib.PurePath(THREE[1])]:
        assert path in three
        assert three.index(path) == 1
        assert three.count(path) == 1


def test_has_nothing_that_is_no_path(three):
    for other in [1, None, "", "\0", "/data/a.txt\0", "\ud800", three]:
        assert other not in three
        assert three.count(other) == 0
        with pytest.raises(ValueError, match="is not in"):
            three.index(other)


def test_finds_repeated_paths_and_paths_that_are_folders(make_set):
    paths = ["a", "a/b", "a", "/", "/a", "a/", "a//b", "a"]
    s = make_set(paths)
    for path in set(paths):
        assert s.count(path) == paths.count(path)
    assert [s.index("a", start) for start in (0, 1, 3, -1)] == [0, 2, 7, 7]


def test_tells_where_it_is_from(three, file, monkeypatch):
    assert three.file == file
    assert repr(three) == f"<zqpaths.PathSet of 3 paths in {file!r}>"
    monkeypatch.chdir(os.path.dirname(file))
    assert zqpaths.open(os.path.basename(file)).file == file


def test_is_itself_alone(three):
    assert three == three
    assert three != zqpaths.open(three.file)
    assert len({three, zqpaths.open(three.file)}) == 2
