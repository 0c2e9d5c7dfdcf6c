"""Sets of sets: made, read, pickled, and read in part where files are missing."""

import errno
import multiprocessing
import os
import pathlib
import pickle
import shutil

import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import zqpaths
from conftest import THREE, as_text, made_paths, path_lists

relaxed = settings(suppress_health_check=[HealthCheck.function_scoped_fixture], max_examples=30)


def write(file, paths, packed=False):
    with zqpaths.Writer(file, packed=packed) as writer:
        writer.extend(paths)
    return str(file)


PARTS = [THREE, ["/more/d.txt", "/data/b.txt"], ["/last/é.png"]]
ALL = sum(PARTS, [])


@pytest.fixture
def files(tmp_path):
    return [write(tmp_path / f"{name}.zqp", part) for name, part in zip("abc", PARTS)]


@pytest.fixture
def merged(files, tmp_path):
    return zqpaths.merge(files, tmp_path / "all.zqs")


@relaxed
@given(st.lists(path_lists, max_size=5), st.booleans(), st.integers(-40, 40))
def test_is_the_list_that_its_files_make(tmp_path, parts, packed, start):
    names = [write(tmp_path / f"{i}.zqp", part, packed) for i, part in enumerate(parts)]
    s = zqpaths.merge(names, tmp_path / "all.zqs", mode="w")
    expected = as_text(sum(parts, []))
    assert list(s) == expected and list(reversed(s)) == expected[::-1]
    assert [s[i] for i in range(-len(s), len(s))] == expected + expected
    assert s[start:] == expected[start:]
    assert s.take(range(len(s))[::-1]) == expected[::-1]
    for path in set(expected):
        assert (s.index(path), s.count(path)) == (expected.index(path), expected.count(path))
    for text in ("a", "b/"):
        places = [i for i, path in enumerate(expected) if text in path]
        assert s.find(text).positions.tolist() == places
    assert s.missing == [] and s.verify() == []


def test_names_its_files(merged, files, tmp_path):
    assert merged.files == files
    assert merged.file == str(tmp_path / "all.zqs")
    assert zqpaths.open(files[0]).files == [files[0]]
    assert zqpaths.merge([], tmp_path / "none.zqs").files == []


def test_names_its_files_wherever_the_process_goes(files, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    s = zqpaths.merge(["a.zqp", b"b.zqp", pathlib.Path("c.zqp")], "all.zqs")
    monkeypatch.chdir("/")
    assert s.files == files and list(s) == ALL
    assert list(pickle.loads(pickle.dumps(s))) == ALL


def test_takes_sets_of_sets_apart(merged, files, tmp_path):
    twice = zqpaths.merge([merged.file, files[0]], tmp_path / "twice.zqs")
    assert list(twice) == ALL + THREE


def test_can_be_moved_with_its_files(merged, tmp_path):
    shutil.move(tmp_path, f"{tmp_path}-moved")
    moved = zqpaths.open(f"{tmp_path}-moved/all.zqs")
    assert list(moved) == ALL and moved.fingerprint == merged.fingerprint


def test_gives_bytes(merged):
    assert zqpaths.open(merged.file, as_bytes=True)[-1] == "/last/é.png".encode()


def test_opens_nothing_but_the_manifest(merged, files):
    for file in files:
        os.remove(file)
    s = zqpaths.open(merged.file)
    assert len(s) == len(ALL) and s.fingerprint == merged.fingerprint
    with pytest.raises(FileNotFoundError, match="a.zqp") as refusal:
        s[0]
    assert (refusal.value.kind, refusal.value.errno) == ("not_found", errno.ENOENT)


def test_tells_which_file_has_changed(merged, files):
    write(files[1], ["/other", "/paths"])
    s = zqpaths.open(merged.file)
    assert s[:3] == THREE
    for ask in [lambda: s[3], lambda: list(s), lambda: s.take([5, 4])]:
        with pytest.raises(zqpaths.Error, match="b.zqp") as refusal:
            ask()
        assert refusal.value.kind == "damaged"
    assert len(s.verify()) == 1


def test_reads_what_is_there(merged, files):
    os.remove(files[1])
    s = zqpaths.open(merged.file, partial=True)
    ((positions, reason),) = s.missing
    assert positions == range(3, 5) and files[1] in reason
    assert len(s) == len(ALL)
    assert s[:3] == THREE and s[5] == ALL[5] and s.take([5, 0]) == [ALL[5], ALL[0]]
    there = [0, 1, 2, 5]
    assert s.under("").positions.tolist() == there
    assert list(s.under("")) == [ALL[i] for i in there]
    assert s.find(".").positions.tolist() == there
    assert "/data/b.txt" in s and "/more/d.txt" not in s
    for ask in [lambda: s[3], lambda: s[2:4], lambda: list(s)]:
        with pytest.raises(FileNotFoundError, match="b.zqp"):
            ask()
    again = pickle.loads(pickle.dumps(s))
    assert again.missing == s.missing and again[5] == ALL[5]


def test_tells_of_all_that_is_missing(merged, files):
    os.remove(files[0])
    write(files[2], ["/other"])
    missing = zqpaths.open(merged.file, partial=True).missing
    assert [positions for positions, _ in missing] == [range(0, 3), range(5, 6)]
    assert files[0] in missing[0][1] and files[2] in missing[1][1]


def test_opens_any_set_in_part(three):
    s = zqpaths.open(three.file, partial=True)
    assert list(s) == THREE and s.missing == []
    with pytest.raises(FileNotFoundError):
        zqpaths.open(three.file + ".none", partial=True)


def test_replaces_or_refuses(merged, files):
    with pytest.raises(zqpaths.ExistsError) as refusal:
        zqpaths.merge(files[:1], merged.file)
    assert refusal.value.filename == merged.file
    assert list(zqpaths.open(merged.file)) == ALL
    assert list(zqpaths.merge(files[:1], merged.file, mode="w")) == THREE
    assert list(merged) == ALL
    with pytest.raises(ValueError, match="neither 'w' nor 'x'"):
        zqpaths.merge(files, merged.file, mode="a")


def test_makes_nothing_of_what_is_no_set(files, tmp_path):
    made = tmp_path / "all.zqs"
    for wrong, kind in [(tmp_path / "none.zqp", "not_found"), (tmp_path, "not_a_set")]:
        with pytest.raises(zqpaths.Error) as refusal:
            zqpaths.merge([files[0], wrong], made)
        assert refusal.value.kind == kind and str(wrong) in str(refusal.value)
    for wrong in ["a.zqp", b"a.zqp", [1], None]:
        with pytest.raises(TypeError):
            zqpaths.merge(wrong, made)
    assert sorted(os.listdir(tmp_path)) == ["a.zqp", "b.zqp", "c.zqp"]


def test_is_pickled_by_its_name(merged, files):
    bytes_of_set = pickle.dumps(merged)
    assert len(bytes_of_set) < 200 + len(merged.file)
    assert list(pickle.loads(bytes_of_set)) == ALL
    zqpaths.merge(files[1:], merged.file, mode="w")
    with pytest.raises(zqpaths.Error) as refusal:
        pickle.loads(bytes_of_set)
    assert refusal.value.kind == "changed"


def lengths(paths):
    return [len(path) for path in paths]


@pytest.mark.parametrize("method", ["fork", "spawn"])
def test_is_read_in_other_processes(tmp_path, method):
    paths = made_paths(3000)
    files = [write(tmp_path / f"{i}.zqp", paths[i * 1000:(i + 1) * 1000]) for i in range(3)]
    s = zqpaths.merge(files, tmp_path / "all.zqs")
    assert s[1500] == paths[1500]
    with multiprocessing.get_context(method).Pool(1) as pool:
        for some in (s, s.find("class-1"), s.split(0, 2, seed=3)):
            assert pool.apply(lengths, [some]) == lengths(some)
