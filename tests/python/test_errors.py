"""What is refused, and as which exception."""

import errno
import os
import pathlib
import pickle
import subprocess
import sys

import pytest

import zqpaths
from conftest import THREE, made_paths


def refusal_of(call, *arguments):
    with pytest.raises(zqpaths.Error) as refusal:
        call(*arguments)
    return refusal.value


def test_tells_that_there_is_no_file(file):
    error = refusal_of(zqpaths.open, file)
    assert isinstance(error, FileNotFoundError) and isinstance(error, zqpaths.NotFoundError)
    assert (error.kind, error.errno, error.filename) == ("not_found", errno.ENOENT, file)
    assert str(error) == f"[Errno 2] No such file or directory: '{file}'"
    assert refusal_of(zqpaths.open, pathlib.Path(file)).filename == pathlib.Path(file)
    assert refusal_of(zqpaths.Writer, f"{file}/x").kind == "not_found"


def test_tells_that_there_is_a_file(three, file):
    error = refusal_of(zqpaths.Writer, file, "x")
    assert isinstance(error, FileExistsError) and isinstance(error, zqpaths.ExistsError)
    assert (error.kind, error.errno, error.filename) == ("exists", errno.EEXIST, file)


def test_tells_what_the_system_refuses(file):
    error = refusal_of(zqpaths.Writer, file + "x" * 300)
    assert isinstance(error, OSError)
    assert (error.kind, error.errno) == ("system", errno.ENAMETOOLONG)


@pytest.mark.skipif(os.geteuid() == 0, reason="root may do everything")
def test_tells_what_may_not_be_read(three, file):
    os.chmod(file, 0)
    assert isinstance(refusal_of(zqpaths.open, file), PermissionError)


def test_has_a_permission_error_for_what_may_not_be_read():
    error = zqpaths._errors.exception_of("system", "f: no", errno.EACCES, "f")
    assert isinstance(error, PermissionError) and isinstance(error, zqpaths.DeniedError)
    assert (error.kind, error.filename) == ("system", "f")


def test_has_an_os_error_for_a_full_device_and_a_full_quota():
    error = zqpaths._errors.exception_of("no_space", "f: full", errno.EDQUOT, "f")
    assert isinstance(error, OSError) and (error.kind, error.errno) == ("no_space", errno.EDQUOT)


def test_tells_that_a_file_is_no_set(file):
    pathlib.Path(file).write_text("a list\n")
    error = refusal_of(zqpaths.open, file)
    assert error.kind == "not_a_set" and not isinstance(error, OSError)
    assert file in str(error)
    assert refusal_of(zqpaths.open, os.path.dirname(file)).kind == "not_a_set"


def damage(file):
    """Overwrites what is in the midst of a set."""
    with open(file, "r+b") as bytes_of_set:
        bytes_of_set.seek(os.path.getsize(file) // 2)
        bytes_of_set.write(b"\xa5" * 4096)


def test_tells_that_a_set_is_damaged(make_set, file):
    s = make_set(made_paths(50_000))
    assert s.verify() == []
    damage(file)
    damages = s.verify()
    assert len(damages) >= 1 and all(isinstance(text, str) and file in text for text in damages)


def test_gives_old_answers_or_an_exception_when_a_set_is_cut_short(make_set, file):
    paths = made_paths(50_000)
    s = make_set(paths)
    os.truncate(file, 5000)
    for ask in [lambda: s[49_999], lambda: list(s), lambda: s.take([1]), lambda: s.find("image"),
                lambda: s.under("/data"), lambda: paths[3] in s]:
        error = refusal_of(ask)
        assert error.kind == "damaged" and file in str(error)
    assert len(s) == 50_000
    assert len(s.verify()) == 1
    assert refusal_of(zqpaths.open, file).kind in ("damaged", "not_a_set")


def test_keeps_its_answers_when_the_file_is_replaced_or_appended_to(make_set, file):
    s = make_set(THREE)
    found = s.find("b")
    with zqpaths.Writer(file, "a") as writer:
        writer.extend(made_paths(1000))
    assert list(s) == THREE and s.count("/data/b.txt") == 1
    assert len(zqpaths.open(file)) == 1003
    with zqpaths.Writer(file, "w") as writer:
        writer.add("other")
    assert list(s) == THREE and list(found) == THREE[1:]
    os.remove(file)
    assert list(reversed(s)) == THREE[::-1]


def test_tells_that_another_process_writes(three, file):
    code = "import sys, zqpaths; w = zqpaths.Writer(sys.argv[1], 'a'); print(1, flush=True); input()"
    other = subprocess.Popen([sys.executable, "-c", code, file],
                             stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    try:
        assert other.stdout.readline() == b"1\n"
        assert refusal_of(zqpaths.Writer, file, "a").kind == "held"
    finally:
        other.communicate(b"\n")


@pytest.mark.parametrize("argument", [1, None, ["a"]])
def test_opens_nothing_but_files(argument):
    with pytest.raises(TypeError):
        zqpaths.open(argument)


def test_takes_names_of_files_in_any_form(three, file):
    for name in [file, file.encode(), pathlib.Path(file)]:
        assert list(zqpaths.open(name)) == THREE
        with zqpaths.Writer(name, "a"):
            pass


def test_cannot_be_made_otherwise():
    for one in [zqpaths.PathSet, zqpaths.Selection, zqpaths.PathSequence, zqpaths.PathIterator]:
        for make in [one, lambda one=one: object.__new__(one), type("Sub", (one,), {})]:
            with pytest.raises(TypeError):
                make()


@pytest.mark.parametrize("arguments", [
    ("not_found", "f: no", 2, "f"), ("exists", "f: there", 0, "f"), ("system", "f: no", 0, "f"),
    ("system", "f: no", errno.EPERM, None), ("no_space", "f: full", 28, "f"),
    ("wrong_use", "f: empty", 0, None), ("damaged", "f: bad", 0, "f"), ("held", "f: by", 0, "f")])
def test_comes_back_from_other_processes(arguments):
    error = zqpaths._errors.exception_of(*arguments)
    again = pickle.loads(pickle.dumps(error))
    assert (type(again), str(again), again.kind) == (type(error), str(error), arguments[0])
    assert getattr(again, "filename", None) == getattr(error, "filename", None)
