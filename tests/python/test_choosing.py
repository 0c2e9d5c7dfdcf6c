"""Selections: what is found, samples, and shares of readers."""

import os
import re
import subprocess

import numpy
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import zqpaths
from conftest import THREE, as_text, path_bytes, path_lists

relaxed = settings(suppress_health_check=[HealthCheck.function_scoped_fixture])


def expect(selection, positions, paths):
    """That a selection is these positions of a list of paths, however it is asked."""
    chosen = [paths[i] for i in positions]
    assert selection.positions.dtype == numpy.int64
    assert selection.positions.tolist() == positions
    assert len(selection) == len(chosen)
    assert list(selection) == chosen
    assert list(reversed(selection)) == chosen[::-1]
    assert selection[1:] == chosen[1:]
    assert [selection[i] for i in range(len(chosen))] == chosen
    assert selection.take(range(len(chosen))[::-1]) == chosen[::-1]
    for path in set(paths):
        assert (path in selection) == (path in chosen)
        assert selection.count(path) == chosen.count(path)
        if path in chosen:
            assert selection.index(path) == chosen.index(path)


@relaxed
@given(path_lists, path_bytes)
def test_finds_paths_that_hold_a_text(make_set, paths, text):
    s = make_set(paths, as_bytes=True)
    expect(s.find(text), [i for i, path in enumerate(paths) if text in path], paths)


@relaxed
@given(path_lists)
def test_finds_what_is_in_a_folder(make_set, paths):
    s = make_set(paths)
    texts = as_text(paths)
    inside = [i for i, path in enumerate(texts) if re.match(r"a(/|\Z)", path)]
    expect(s.under("a"), inside, texts)
    expect(s.under("a//"), inside, texts)


@relaxed
@given(path_lists, st.integers(1, 5))
def test_deals_paths_to_readers(make_set, paths, of):
    s = make_set(paths)
    for rank in range(of):
        expect(s.split(rank, of), list(range(rank, len(paths), of)), as_text(paths))


@relaxed
@given(path_lists, st.integers(1, 5), st.integers(0, 2**64 - 1), st.integers(0, 3))
def test_deals_a_shuffle_to_readers(make_set, paths, of, seed, epoch):
    s = make_set(paths)
    shares = [s.split(rank, of, seed=seed, epoch=epoch) for rank in range(of)]
    positions = [share.positions.tolist() for share in shares]
    assert sorted(sum(positions, [])) == list(range(len(paths)))
    assert max(map(len, shares)) - min(map(len, shares)) <= 1
    for share, places in zip(shares, positions):
        expect(share, places, as_text(paths))


def test_finds_by_globs_and_expressions(three):
    assert list(three.find(glob="[ab].txt")) == THREE[:2]
    assert list(three.find(glob="/data/*.txt")) == THREE[:2]
    assert list(three.find(glob=b"/data/**.txt")) == THREE
    assert list(three.find(regex=r"b.*\.txt$")) == THREE[1:]
    assert list(three.find("B/", ignore_case=True)) == THREE[2:]
    assert list(three.find("B/")) == []


def test_finds_one_thing_at_a_time(three):
    for wrong in [{}, {"text": "a", "glob": "*"}, {"glob": "*", "regex": "."}]:
        with pytest.raises(TypeError, match="one of text, glob and regex"):
            three.find(**wrong)
    with pytest.raises(TypeError):
        three.find(1)
    with pytest.raises(ValueError) as refusal:
        three.find(regex="(")
    assert isinstance(refusal.value, zqpaths.Error) and refusal.value.kind == "wrong_use"


def test_finds_below_any_kind_of_folder(three, tmp_path):
    import pathlib

    for folder in ["/data/b", b"/data/b/", pathlib.PurePath("/data/b")]:
        assert list(three.under(folder)) == THREE[2:]
    assert list(three.under("")) == list(three.under("/")) == THREE
    assert list(three.under("/dat")) == []


def test_keeps_positions_from_being_written_to(three):
    for selection in [three.find("a"), three.split(0, 2), three.split(0, 2, seed=1)]:
        with pytest.raises(ValueError):
            selection.positions[0] = 1


def test_keeps_positions_after_the_selection_is_gone(three):
    positions = three.find("b").positions
    assert positions.tolist() == [1, 2]


def test_keeps_the_set_that_it_is_of(make_set):
    selection = make_set(THREE).find("b")
    assert list(selection) == THREE[1:]
    assert selection.take([1], arrow_like=True)[1].tobytes() == THREE[2].encode()
    assert "2 paths" in repr(selection)


def test_gives_bytes_where_the_set_does(make_set):
    s = make_set(THREE, as_bytes=True)
    assert s.find("a.txt")[0] == b"/data/a.txt"
    assert isinstance(s.sample(1)[0], bytes)
    assert isinstance(next(iter(s.split(0, 1))), bytes)


def test_samples_without_repetition(many):
    paths, file = many
    s = zqpaths.open(file)
    sample = s.sample(1000)
    assert len(set(sample)) == 1000 and set(sample) <= set(paths)
    assert s.sample(1000) != sample
    assert s.sample(1000, seed=4)[:10] == s.sample(10, seed=4) != s.sample(10, seed=5)


def test_samples_all_where_there_are_fewer(three):
    assert sorted(three.sample(10)) == THREE
    assert three.sample(0) == []
    assert len(three.sample(2**64 - 1, seed=2**64 - 1)) == 3


def test_samples_what_the_program_samples(many):
    program = os.environ.get("ZQ_PROGRAM")
    if program is None:
        pytest.skip("ZQ_PROGRAM names no program")
    _, file = many
    for verb, ours in [
        (["sample", file, "-n", "20", "--seed", "7"], zqpaths.open(file).sample(20, seed=7)),
        (["shuffle", file, "--seed", "7"], list(zqpaths.open(file).split(0, 1, seed=7))),
        (["split", file, "--rank", "2", "--of", "9"], list(zqpaths.open(file).split(2, 9))),
    ]:
        run = subprocess.run([program, *verb], check=True, stdout=subprocess.PIPE, text=True)
        assert run.stdout.splitlines() == ours


def test_shuffles_otherwise_in_every_epoch(many):
    _, file = many
    s = zqpaths.open(file)
    orders = [s.split(0, 1, seed=7, epoch=epoch).positions for epoch in range(3)]
    assert not numpy.array_equal(orders[0], orders[1])
    assert not numpy.array_equal(orders[1], orders[2])
    assert numpy.array_equal(orders[0], s.split(0, 1, seed=7).positions)


@pytest.mark.parametrize(
    "refused, call",
    [
        (ValueError, lambda s: s.split(2, 2)),
        (ValueError, lambda s: s.split(0, 0)),
        (ValueError, lambda s: s.split(-1, 2)),
        (ValueError, lambda s: s.split(0, 2, seed=-1)),
        (ValueError, lambda s: s.split(0, 2, seed=2**64)),
        (ValueError, lambda s: s.sample(-1)),
        (TypeError, lambda s: s.split(0, 2, epoch=1)),
        (TypeError, lambda s: s.split(0.5, 2)),
        (TypeError, lambda s: s.sample("1")),
    ],
)
def test_refuses_what_cannot_be_chosen(three, refused, call):
    with pytest.raises(refused):
        call(three)


def test_paths_that_are_gone_keep_their_positions(tmp_path, file):
    tree = tmp_path / "tree"
    tree.mkdir()
    for name in "abcde":
        (tree / name).touch()

    def zqpaths_program(*arguments):
        subprocess.run([os.environ["ZQ_PROGRAM"], *arguments], check=True, stdout=subprocess.DEVNULL)

    zqpaths_program("index", "--quiet", file, str(tree))
    assert list(zqpaths.open(file).gone) == []
    for name in "bde":
        (tree / name).unlink()
    zqpaths_program("update", "--quiet", file)
    updated = zqpaths.open(file)
    paths = [str(tree / name) for name in "abcde"]
    assert list(updated) == paths
    expect(updated.gone, [1, 3, 4], paths)
