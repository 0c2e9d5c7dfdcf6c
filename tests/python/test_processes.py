"""Sets in threads and in other processes, forked and spawned."""

import concurrent.futures
import copy
import multiprocessing
import os
import pickle
import random
import threading
import time

import numpy
import pytest

import zqpaths
from conftest import THREE, made_paths


def take_some(s, seed):
    """Some work on a set, in whatever process."""
    chance = random.Random(seed)
    places = [chance.randrange(len(s)) for _ in range(3000)]
    singles = [s[i] for i in places[:300]]
    return places, s.take(places), singles


def expect_all(paths, answers):
    count = 0
    for places, taken, singles in answers:
        assert taken == [paths[i] for i in places]
        assert singles == taken[:300]
        count += 1
    assert count == 6


@pytest.mark.parametrize("method", ["fork", "spawn", "forkserver"])
@pytest.mark.parametrize("packed", [False, True])
def test_reads_in_other_processes(many, tmp_path, method, packed):
    paths, file = many
    if packed:
        file = str(tmp_path / "packed.zqp")
        with zqpaths.Writer(file, packed=True) as writer:
            writer.extend(paths)
    s = zqpaths.open(file)
    s[0]
    context = multiprocessing.get_context(method)
    with context.Pool(2) as pool:
        expect_all(paths, pool.starmap(take_some, [(s, seed) for seed in range(6)]))


def test_reads_in_threads(many):
    paths, file = many
    s = zqpaths.open(file)
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        expect_all(paths, pool.map(take_some, [s] * 6, range(6)))
        for found in pool.map(lambda text: s.find(text), ["class-1/"] * 4):
            assert list(found) == [path for path in paths if "class-1/" in path]


def test_gives_each_path_of_an_iterator_to_one_thread(many):
    paths, file = many
    iterator = iter(zqpaths.open(file))
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        parts = list(pool.map(list, [iterator] * 4))
    assert sorted(sum(parts, [])) == sorted(paths)


def test_lets_other_threads_work_meanwhile(many):
    _, file = many
    s = zqpaths.open(file)
    ticks = 0
    is_done = threading.Event()

    def tick():
        nonlocal ticks
        while not is_done.is_set():
            ticks += 1
            time.sleep(0.0005)

    thread = threading.Thread(target=tick)
    thread.start()
    before = ticks
    deadline = time.monotonic() + 0.3
    while time.monotonic() < deadline:
        s.verify()
        s.find("no such text")
        s.take(range(len(s)), arrow_like=True)
    seen = ticks - before
    is_done.set()
    thread.join()
    assert seen > 3


def pickled(value):
    return pickle.loads(pickle.dumps(value))


def test_is_pickled_by_the_name_of_its_file(three, file, monkeypatch, tmp_path):
    assert len(pickle.dumps(three)) < 200 + len(file)
    assert list(pickled(three)) == THREE
    assert pickled(three).file == file
    monkeypatch.chdir(os.path.dirname(file))
    relative = zqpaths.open(os.path.basename(file), as_bytes=True)
    monkeypatch.chdir("/")
    assert list(pickled(relative)) == [path.encode() for path in THREE]
    assert list(copy.deepcopy(three)) == THREE


@pytest.mark.parametrize("choose", [
    lambda s: s.find("image-00"), lambda s: s.under("/data/03"), lambda s: s.find("none such"),
    lambda s: s.split(1, 3), lambda s: s.split(1, 3, seed=5, epoch=2)])
def test_is_pickled_with_what_was_chosen(many, choose):
    selection = choose(zqpaths.open(many[1]))
    again = pickled(selection)
    assert isinstance(again, zqpaths.Selection)
    assert numpy.array_equal(again.positions, selection.positions)
    assert list(again) == list(selection)


def test_pickles_no_positions_of_shares(many):
    s = zqpaths.open(many[1])
    assert len(pickle.dumps(s.split(0, 2, seed=1))) < 400 + len(many[1])


@pytest.mark.parametrize("change", ["append", "replace", "remove"])
def test_is_not_unpickled_from_a_file_that_has_changed(three, file, change):
    bytes_of_set = pickle.dumps(three)
    if change == "remove":
        os.remove(file)
    else:
        with zqpaths.Writer(file, change[0].replace("r", "w")) as writer:
            writer.extend(["/data/a.txt", "/data/b.txt", "/data/b/d.txt"])
    with pytest.raises(zqpaths.Error) as refusal:
        pickle.loads(bytes_of_set)
    assert refusal.value.kind == ("not_found" if change == "remove" else "changed")
    assert file in str(refusal.value)


def test_is_unpickled_from_a_file_that_was_written_again_alike(make_set):
    bytes_of_set = pickle.dumps(make_set(THREE))
    make_set(THREE)
    assert list(pickle.loads(bytes_of_set)) == THREE
