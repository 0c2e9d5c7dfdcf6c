"""What the tests share: sets that are made of lists."""

import os
import random

import hypothesis
import pytest

import zqpaths

# Nothing is written beside the sources, and a busy machine is no failure.
hypothesis.settings.register_profile("quiet", database=None, deadline=None, max_examples=60)
hypothesis.settings.load_profile("quiet")


@pytest.fixture
def file(tmp_path):
    """The name of a set file that is not there yet."""
    return str(tmp_path / "data.zqp")


@pytest.fixture
def make_set(file):
    """Makes a set of a list, in the same file each time, and opens it."""

    def make(paths, *, as_bytes=False, packed=False):
        with zqpaths.Writer(file, packed=packed) as writer:
            writer.extend(paths)
        return zqpaths.open(file, as_bytes=as_bytes)

    return make


THREE = ["/data/a.txt", "/data/b.txt", "/data/b/c.txt"]


@pytest.fixture
def three(make_set):
    return make_set(THREE)


def made_paths(count):
    """Paths as data sets have them, in no order."""
    chance = random.Random(count)
    paths = [f"/data/{i % 97:02}/class-{i % 11}/image-{i:07}.png" for i in range(count)]
    chance.shuffle(paths)
    return paths


@pytest.fixture(scope="session")
def many(tmp_path_factory):
    """A list of paths, and the file of a set of them."""
    paths = made_paths(150_000)
    file = str(tmp_path_factory.mktemp("many") / "many.zqp")
    with zqpaths.Writer(file) as writer:
        writer.extend(paths)
    return paths, file


# Few names and separators give folders that are shared, nested, repeated and files at once.
odd_bytes = hypothesis.strategies.sampled_from(
    [b"a", b"b", b"/", b"//", b".", b"\xff", "é".encode(), "日".encode(), b"\n", b"ab/"]
)
path_bytes = hypothesis.strategies.lists(odd_bytes, min_size=1, max_size=6).map(b"".join)
path_lists = hypothesis.strategies.lists(path_bytes, max_size=30)


def as_text(paths):
    return [os.fsdecode(path) for path in paths]
