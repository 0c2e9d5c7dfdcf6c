"""Sets as bags and arrays of Dask, whose workers are processes; and sets that these make."""

import os
import pathlib
import pickle

import dask
import dask.bag
import distributed
import numpy
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import zqpaths
import zqpaths.dask
from conftest import THREE, as_text, made_paths, path_lists

relaxed = settings(suppress_health_check=[HealthCheck.function_scoped_fixture], max_examples=30)


@pytest.fixture(scope="module")
def client():
    """Four workers, each a process, which are forked from one that knows Dask already."""
    with dask.config.set({"distributed.worker.multiprocessing-method": "forkserver"}):
        with distributed.LocalCluster(n_workers=4, threads_per_worker=1, processes=True,
                                      host="127.0.0.1", dashboard_address=None) as cluster:
            with distributed.Client(cluster) as client:
                yield client


@pytest.fixture
def here():
    """Without a cluster: in the thread that asks."""
    with dask.config.set(scheduler="synchronous"):
        yield


def partitions_of(bag):
    return [list(part) for part in dask.compute(*bag.to_delayed())]


# --- Bags.

sizes = st.integers(1, 40)


@relaxed
@given(path_lists, st.booleans(), sizes)
def test_a_bag_has_the_paths_of_a_set(make_set, here, paths, as_bytes, size):
    s = make_set(paths, as_bytes=as_bytes)
    parts = partitions_of(zqpaths.dask.bag(s, partition_size=size))
    assert sum(parts, []) == list(s)
    assert [len(part) for part in parts[:-1]] == [size] * (len(parts) - 1)
    assert len(parts) == max(1, -(-len(s) // size))


@relaxed
@given(path_lists, sizes)
def test_a_bag_has_as_many_partitions_as_asked_for(make_set, here, paths, count):
    parts = partitions_of(zqpaths.dask.bag(make_set(paths), npartitions=count))
    assert sum(parts, []) == as_text(paths)
    assert len(parts) == max(1, min(count, len(paths)))
    lengths = [len(part) for part in parts]
    assert max(lengths) - min(lengths) <= 1


CHOICES = {
    "folder": lambda s: s.under("/data/03"),
    "found": lambda s: s.find("image-00"),
    "nothing": lambda s: s.find("no such text"),
    "share": lambda s: s.split(1, 3),
    "shuffled": lambda s: s.split(1, 3, seed=5, epoch=2),
}


@pytest.mark.parametrize("choice", CHOICES)
def test_a_bag_has_the_paths_of_a_selection(make_set, here, choice):
    selection = CHOICES[choice](make_set(sorted(made_paths(2000))))
    for size in (7, 1000, 5000):
        bag = zqpaths.dask.bag(selection, partition_size=size)
        assert bag.compute() == list(selection)
        numbers = zqpaths.dask.array_of_numbers(selection, partition_size=size)
        assert numpy.array_equal(numbers.compute(), selection.positions)
        assert [len(part) for part in partitions_of(bag)] == list(numbers.chunks[0])


@pytest.mark.parametrize("choice", ["all", "found", "shuffled"])
def test_a_partition_is_a_sequence_that_travels_without_its_paths(make_set, here, choice):
    s = make_set(sorted(made_paths(20_000)))
    chosen = {"all": lambda s: s, **CHOICES}[choice](s)
    (part,) = dask.compute(*zqpaths.dask.bag(chosen, npartitions=1).to_delayed())
    paths = list(chosen)
    assert len(part) == len(paths) and list(part) == paths == list(part)
    assert list(reversed(part)) == paths[::-1]
    for cut in [slice(None), slice(3, 9), slice(None, None, -2), slice(9, 3), slice(-5, None)]:
        assert part[cut] == paths[cut]
    assert (part[0], part[-1], part.index(paths[5])) == (paths[0], paths[-1], 5)
    assert paths[7] in part and "/none such" not in part
    for wrong in (len(paths), -len(paths) - 1):
        with pytest.raises(IndexError):
            part[wrong]
    again = pickle.dumps(part)
    assert len(again) < 600 + len(s.file) + (8 * len(paths) if choice == "found" else 0)
    assert list(pickle.loads(again)) == paths
    assert f"{len(paths)} paths" in repr(part)


def test_a_bag_is_of_the_set_with_this_name(three, file, here, monkeypatch):
    monkeypatch.chdir(os.path.dirname(file))
    for name in [file, file.encode(), pathlib.Path(file), os.path.basename(file)]:
        assert zqpaths.dask.bag(name).compute() == THREE


def test_workers_read_a_bag(client, many):
    paths, file = many
    bag = zqpaths.dask.bag(file, partition_size=9_999)
    assert bag.compute() == paths
    assert bag.map(len).sum().compute() == sum(map(len, paths))
    firsts = [part[0] for part in bag.map_partitions(lambda part: [part]).compute()]
    assert firsts == paths[::9_999]


def opened_by(worker_paths):
    """What a worker keeps open, and the process that it is."""
    list(worker_paths)
    return [(os.getpid(), zqpaths.dask._opened.cache_info().misses)]


def test_workers_open_a_set_once(client, make_set):
    s = make_set(made_paths(3000))
    client.run(zqpaths.dask._opened.cache_clear)
    seen = zqpaths.dask.bag(s, npartitions=100).map_partitions(opened_by).compute()
    assert len(seen) == 100 and {opened for _, opened in seen} == {1}


@pytest.mark.parametrize("choice", ["all", "folder", "share", "shuffled"])
def test_a_name_and_two_numbers_travel(many, choice):
    s = zqpaths.open(many[1])
    chosen = {"all": lambda s: s, **CHOICES}[choice](s)
    if choice == "folder":
        chosen = zqpaths.open(many[1]).under("/")
    for made in [zqpaths.dask.bag(chosen, npartitions=3), zqpaths.dask.array_of_numbers(chosen)]:
        for task in dict(made.dask).values():
            assert len(pickle.dumps(task)) < 500 + len(many[1])


def test_a_partition_of_found_paths_takes_its_own_positions_along(many):
    found = zqpaths.open(many[1]).find("7.png")
    bag = zqpaths.dask.bag(found, npartitions=10)
    for task in dict(bag.dask).values():
        assert len(pickle.dumps(task)) < 1000 + len(many[1]) + len(found)


@pytest.mark.parametrize("change", ["w", "a"])
def test_a_set_that_has_changed_is_refused(client, three, file, change):
    bag = zqpaths.dask.bag(three, partition_size=1)
    with zqpaths.Writer(file, change) as writer:
        writer.add("/other")
    with pytest.raises(zqpaths.Error, match="has changed") as refusal:
        bag.compute()
    assert refusal.value.kind == "changed" and file in str(refusal.value)


def test_bags_of_the_same_paths_have_the_same_name(three, file):
    name = zqpaths.dask.bag(three).name
    assert zqpaths.dask.bag(file).name == name
    assert zqpaths.dask.bag(three, partition_size=2).name != name
    assert zqpaths.dask.bag(three.find("b")).name != zqpaths.dask.bag(three.find("b/")).name
    with zqpaths.Writer(file, "a") as writer:
        writer.add("/other")
    assert zqpaths.dask.bag(file).name != name


@pytest.mark.parametrize("wrong, refusal", [
    ({"partition_size": 0}, ValueError), ({"npartitions": 0}, ValueError),
    ({"npartitions": -1}, ValueError), ({"partition_size": 1.5}, TypeError),
    ({"partition_size": 1, "npartitions": 1}, TypeError)])
def test_refuses_partitions_that_cannot_be_meant(three, wrong, refusal):
    for make in (zqpaths.dask.bag, zqpaths.dask.array_of_numbers):
        with pytest.raises(refusal, match="partition|integer"):
            make(three, **wrong)


def test_refuses_what_is_no_set(file):
    with pytest.raises(FileNotFoundError):
        zqpaths.dask.bag(file)
    with pytest.raises(TypeError):
        zqpaths.dask.bag(1)


# --- Arrays.


@relaxed
@given(path_lists, sizes)
def test_an_array_has_the_positions_of_a_set(make_set, here, paths, size):
    s = make_set(paths)
    numbers = zqpaths.dask.array_of_numbers(s, partition_size=size)
    assert numbers.dtype == numpy.int64 and numbers.shape == (len(s),)
    assert numbers.compute().tolist() == list(range(len(s)))
    assert numbers.numblocks[0] == zqpaths.dask.bag(s, partition_size=size).npartitions


def test_workers_compute_an_array(client, many):
    numbers = zqpaths.dask.array_of_numbers(many[1], npartitions=7)
    assert numbers[::1000].compute().tolist() == list(range(0, 150_000, 1000))
    assert int(numbers.sum().compute()) == sum(range(150_000))


# --- Sets that workers make.


def everything_in(folder):
    return sorted(str(path.relative_to(folder)) for path in pathlib.Path(folder).rglob("*"))


@pytest.fixture
def target(tmp_path):
    """The name of a set of sets that is not there yet, alone in its folder."""
    folder = tmp_path / "made"
    folder.mkdir()
    return str(folder / "all.zqs")


def test_workers_make_a_set(client, many, target):
    paths, file = many
    made = zqpaths.dask.index(zqpaths.dask.bag(file, npartitions=5), target)
    assert made.file == target and list(made) == paths
    assert len(made.files) == 5
    assert everything_in(os.path.dirname(target)) == sorted(
        ["all.zqs", "all.zqs.d", *(f"all.zqs.d/{os.path.basename(name)}" for name in made.files)])
    assert sorted(made.files) == made.files and made.verify() == []
    again = zqpaths.dask.bag(made, partition_size=10_007)
    assert again.compute() == paths
    assert again.filter(lambda path: "class-3/" in path).count().compute() == len(
        made.find("class-3/"))


@relaxed
@given(st.lists(path_lists, max_size=4), st.booleans())
def test_a_set_has_the_paths_of_the_parts(tmp_path, here, parts, packed):
    file = str(tmp_path / "all.zqs")
    delayed = [dask.delayed(part) for part in parts]
    made = zqpaths.dask.index(delayed, file, mode="w", packed=packed)
    assert list(made) == as_text(sum(parts, []))
    assert len(made.files) == sum(bool(part) for part in parts)
    listed = [name for name in everything_in(tmp_path) if ".d/" in name]
    assert len(listed) == len(made.files)


def paths_of(part):
    return [f"/data/{part}/{i}" for i in range(3)]


def test_futures_are_parts(client, target):
    made = zqpaths.dask.index([client.submit(paths_of, part) for part in range(4)], target)
    assert list(made) == sum(map(paths_of, range(4)), [])


def generated(part):
    yield from paths_of(part)


def test_parts_may_be_generated(client, target):
    parts = [dask.delayed(generated)(part) for part in range(4)]
    assert list(zqpaths.dask.index(parts, target)) == sum(map(paths_of, range(4)), [])


def test_a_future_is_not_read_again_where_its_paths_are_gone(client, target):
    parts = [client.submit(generated, 0)]
    assert list(zqpaths.dask.index(parts, target)) == paths_of(0)
    with pytest.raises(zqpaths.UseError, match="some paths are gone"):
        zqpaths.dask.index(parts, target, mode="w")
    assert list(zqpaths.open(target)) == paths_of(0)


def test_lists_are_read_as_they_are(tmp_path, here, target):
    odd = ["/a b", "/caf\xe9", "/\udcff", "/cr\r", "/next\x85line", "/sep\u2028x", " x "]
    paths = [f"{path}/{i}" for i in range(300) for path in odd]
    for part in range(2):
        lines = "".join(f"{path}\n" for path in paths[part::2])
        (tmp_path / f"{part}.txt").write_bytes(os.fsencode(lines))
    lines = dask.bag.read_text(str(tmp_path / "*.txt"), blocksize=1000, linedelimiter="\n",
                               errors="surrogateescape")
    assert lines.npartitions > 4
    made = zqpaths.dask.index(lines.map(str.rstrip, "\n"), target)
    assert list(made) == paths[0::2] + paths[1::2]


def fail_at(path):
    if path.endswith("7"):
        raise LookupError("no more")
    return path


@pytest.mark.parametrize("mode", ["x", "w"])
def test_a_part_that_fails_leaves_everything_as_it_was(client, target, mode):
    good = dask.bag.from_sequence([f"/data/{i}" for i in range(6)], npartitions=3)
    if mode == "w":
        zqpaths.dask.index(good, target)
    before = everything_in(os.path.dirname(target))
    bad = dask.bag.from_sequence([f"/new/{i}" for i in range(30)], npartitions=30).map(fail_at)
    with pytest.raises(LookupError, match="no more"):
        zqpaths.dask.index(bad, target, mode=mode)
    assert everything_in(os.path.dirname(target)) == before
    if mode == "w":
        assert list(zqpaths.open(target)) == [f"/data/{i}" for i in range(6)]


@pytest.mark.parametrize("bad", ["", "a\0b", 1, None])
def test_a_part_with_what_is_no_path_is_refused(here, target, bad):
    with pytest.raises((ValueError, TypeError)):
        zqpaths.dask.index(dask.bag.from_sequence(["a", bad], npartitions=2), target)
    assert everything_in(os.path.dirname(target)) == []


def fail_once(paths, marker):
    """Fails after some paths, the first time that it is run."""
    yield from paths
    try:
        pathlib.Path(marker).touch(exist_ok=False)
    except FileExistsError:
        return
    raise OSError("the first time")


def test_a_part_that_is_tried_again_counts_once(client, target, tmp_path):
    parts = dask.bag.from_sequence(THREE, npartitions=3)
    marker = tmp_path / "marker"
    parts = parts.map_partitions(fail_once, str(marker))
    made = zqpaths.dask.index(parts, target, retries=2)
    assert list(made) == THREE and marker.exists()
    assert len(everything_in(os.path.dirname(target))) == 2 + 3


def end_once(paths, marker):
    """Ends the process in the midst of a part, the first time that it is run."""
    for path in paths:
        yield path
        try:
            pathlib.Path(marker).touch(exist_ok=False)
        except FileExistsError:
            continue
        os._exit(1)


def test_a_worker_that_ends_leaves_nothing_half(client, target, tmp_path):
    parts = dask.bag.from_sequence(THREE, npartitions=3)
    marker = tmp_path / "marker"
    parts = parts.map_partitions(end_once, str(marker))
    assert list(zqpaths.dask.index(parts, target)) == THREE and marker.exists()
    assert len(everything_in(os.path.dirname(target))) == 2 + 3


def test_a_part_may_be_made_twice_at_once(tmp_path):
    makings = []

    def make(paths):
        makings.extend(zqpaths._dask_index._write(paths, part=0, folder=str(tmp_path), packed=False))

    def paths():
        yield "a"
        make(["a", "b"])
        yield "b"

    make(paths())
    assert len(makings) == 2
    for file, count in makings:
        assert count == 2 and list(zqpaths.open(file)) == ["a", "b"]


def test_a_part_that_has_lost_paths_is_refused(here, target):
    paths = (path for path in THREE)
    next(paths)
    with pytest.raises(zqpaths.UseError, match="some paths are gone"):
        zqpaths.dask.index(dask.bag.Bag({("part", 0): paths}, "part", 1), target)
    assert everything_in(os.path.dirname(target)) == []


def test_a_set_that_is_there_is_refused_or_replaced(here, target):
    one = dask.bag.from_sequence(THREE, npartitions=2)
    zqpaths.dask.index(one, target)
    before = everything_in(os.path.dirname(target))
    with pytest.raises(zqpaths.ExistsError) as refusal:
        zqpaths.dask.index(one.map(fail_at), target)
    assert refusal.value.filename == target
    assert everything_in(os.path.dirname(target)) == before
    made = zqpaths.dask.index(zqpaths.dask.bag(target).map(str.upper), target, mode="w")
    assert list(made) == [path.upper() for path in THREE]
    assert len(everything_in(os.path.dirname(target))) == 2 + 1


def test_refuses_what_is_no_parts_and_no_mode(here, target, tmp_path):
    for wrong in ["a", b"a", ["a"], [["a"]], [1], None, 1]:
        with pytest.raises(TypeError):
            zqpaths.dask.index(wrong, target)
    with pytest.raises(ValueError, match="neither 'w' nor 'x'"):
        zqpaths.dask.index([], target, mode="a")
    other = tmp_path / "list.txt"
    other.write_text("a list\n")
    with pytest.raises(zqpaths.Error) as refusal:
        zqpaths.dask.index([], other, mode="w")
    assert refusal.value.kind == "not_a_set" and other.read_text() == "a list\n"
    assert everything_in(os.path.dirname(target)) == []
