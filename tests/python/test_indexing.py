"""Sets of what directories hold."""

import os
import signal

import pytest

import zqpaths


@pytest.fixture
def tree(tmp_path):
    """A directory with files, hidden ones, links, and 2,500 files in a sub-directory."""
    root = tmp_path / "tree"
    (root / "many").mkdir(parents=True)
    (root / "empty").mkdir()
    (root / ".hidden").mkdir()
    for name in ["b", "a", ".c", ".hidden/d"]:
        (root / name).touch()
    for i in range(2500):
        (root / "many" / f"{i:04}").touch()
    (root / "link").symlink_to("many")
    return str(root)


def expected(tree, names):
    return [f"{tree}/{name}" for name in names]


MANY = [f"many/{i:04}" for i in range(2500)]


def test_holds_what_is_no_directory(tree, file):
    s = zqpaths.index(tree, file)
    assert list(s) == expected(tree, [".c", "a", "b", "link", ".hidden/d", *MANY])
    assert list(zqpaths.open(file)) == list(s)
    assert all(os.path.lexists(path) for path in s)


def test_takes_options(tree, file):
    s = zqpaths.index(tree.encode(), file, hidden=False, follow=True, one_file_system=True)
    linked = [f"link/{i:04}" for i in range(2500)]
    assert list(s) == expected(tree, ["a", "b", *linked, *MANY])


def test_refuses_appends_or_replaces(tree, file):
    zqpaths.index(f"{tree}/.hidden", file)
    with pytest.raises(FileExistsError):
        zqpaths.index(tree, file)
    assert len(zqpaths.index(f"{tree}/.hidden", file, mode="a")) == 2
    assert len(zqpaths.index(f"{tree}/.hidden", file, mode="w", packed=True)) == 1


def test_tells_its_progress(tree, file):
    counts = []
    s = zqpaths.index(tree, file, progress=counts.append)
    assert counts == [1000, 2000, len(s)]
    counts.clear()
    zqpaths.index(f"{tree}/empty", file, mode="w", progress=counts.append)
    assert counts == [0]


def test_is_ended_by_an_exception_of_the_callback(tree, file):
    zqpaths.index(f"{tree}/.hidden", file)

    def end(count):
        raise LookupError(count)

    with pytest.raises(LookupError, match="1000"):
        zqpaths.index(tree, file, mode="w", progress=end)
    assert len(zqpaths.open(file)) == 1


def test_is_ended_by_a_signal(tree, file):
    with pytest.raises(KeyboardInterrupt):
        zqpaths.index(tree, file, progress=lambda count: os.kill(os.getpid(), signal.SIGINT))
    assert not os.path.exists(file)


@pytest.fixture
def loop(tree):
    """A directory that cannot be walked: a link in it leads back to it."""
    os.symlink("..", f"{tree}/many/up")
    return tree


def test_tells_what_cannot_be_read(loop, file):
    told = []
    s = zqpaths.index(loop, file, follow=True, on_error=lambda *error: told.append(error))
    assert [path for path, reason in told if loop in reason] == [path for path, _ in told] != []
    assert f"{loop}/a" in s


def test_leaves_nothing_out_silently(loop, file):
    with pytest.raises(OSError, match="up") as refusal:
        zqpaths.index(loop, file, follow=True)
    assert isinstance(refusal.value, zqpaths.Error)
    assert not os.path.exists(file)


def test_is_ended_by_an_exception_of_the_callback_for_errors(loop, file):
    def end(path, reason):
        raise LookupError(path)

    with pytest.raises(LookupError, match="up"):
        zqpaths.index(loop, file, follow=True, on_error=end)
    assert not os.path.exists(file)


def test_refuses_what_is_no_directory(tree, file):
    with pytest.raises(NotADirectoryError) as refusal:
        zqpaths.index(f"{tree}/a", file)
    assert refusal.value.filename == f"{tree}/a"
    with pytest.raises(FileNotFoundError):
        zqpaths.index(f"{tree}/none", file)
    assert not os.path.exists(file)
