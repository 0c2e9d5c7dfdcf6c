"""Lack of memory at every step of a call: MemoryError, and the answer when there is some again.

What is refused is what the library asks for, and large blocks of the interpreter's. Small ones it has
in stock, but with PYTHONMALLOC=malloc: pybind11, which makes objects of ours, does not survive a lack of
those, so that only what makes none is asked then (python.failing_objects).
"""

import failing_heap
import pytest

import zqpaths

PATHS = ["/usr/bin/env", "/usr/bin/python3", "/usr/lib/a.so", "plain", "/usr/bin/env"]
MOST_BLOCKS = 20_000  # a call that asks for more does not end


def answer_without(number, all_after, call):
    """What `call` gives with a block refused, or None for a MemoryError; and whether one was."""
    grant = failing_heap.grant
    answer = None
    failing_heap.refuse(number, all_after)
    try:
        answer = call()
    except MemoryError:
        pass
    return answer, grant()


def refuse_each_block(call, expected):
    """Returns how often there was no memory for `call`."""
    failures = 0
    for all_after in (False, True):
        for number in range(1, MOST_BLOCKS):
            answer, is_refused = answer_without(number, all_after, call)
            if answer is None:
                failures += 1
                answer = call()
            assert answer == expected, number
            if not is_refused:
                break
        else:
            pytest.fail("the call does not end")
    return failures


@pytest.fixture
def opened(make_set):
    return make_set(PATHS)


MAKES_NO_OBJECT_OF_OURS = {
    "one": lambda s: s[3],
    "last": lambda s: s[-1],
    "range": lambda s: s[1:4],
    "length": len,
}
READING = {
    "take": lambda s: s.take([4, 0, 2]),
    "take like arrow": lambda s: [part.tolist() for part in s.take([4, 0], arrow_like=True)],
    "all": list,
    "backwards": lambda s: list(reversed(s)),
    "contains": lambda s: (PATHS[1] in s, "none" in s),
    "index": lambda s: s.index("plain"),
    "count": lambda s: s.count(PATHS[0]),
    "find": lambda s: list(s.find("bin")),
    "positions": lambda s: s.find("bin").positions.tolist(),
    "under": lambda s: list(s.under("/usr/bin")),
    "sample": lambda s: s.sample(2, seed=1),
    "split": lambda s: list(s.split(0, 2, seed=1)),
    "gone": lambda s: list(s.gone),
    "verify": lambda s: s.verify(),
    "facts": lambda s: (len(s), s.file, s.files, s.missing, s.fingerprint, repr(s)),
    "pickle": lambda s: s.__reduce__(),
}


def ask(opened, question):
    expected = question(opened)
    refuse_each_block(lambda: question(opened), expected)


@pytest.mark.parametrize("name", MAKES_NO_OBJECT_OF_OURS)
def test_answers_with_the_interpreters_objects_or_raises(opened, name):
    ask(opened, MAKES_NO_OBJECT_OF_OURS[name])


@pytest.mark.parametrize("name", READING)
def test_answers_or_raises(opened, name):
    ask(opened, READING[name])


def test_opens_or_raises(opened):
    assert refuse_each_block(lambda: list(zqpaths.open(opened.file)), PATHS) > 0


def test_writes_all_or_nothing(opened, file):
    def write():
        writer.add("a/b")
        writer.extend(["a/c", b"d"])
        writer.commit()
        return True

    grown = ["a/b", "a/c", "d"]
    failures = 0
    for all_after in (False, True):
        for number in range(1, MOST_BLOCKS):
            # Made beforehand: neither does pybind11 survive it while it takes note of an object.
            writer = zqpaths.Writer(file, "w")
            is_written, is_refused = answer_without(number, all_after, write)
            assert list(zqpaths.open(file)) in ([grown] if is_written else [PATHS, grown])
            failures += not is_written
            writer.discard()
            del writer
            with zqpaths.Writer(file, "w") as again:
                again.extend(PATHS)
            if not is_refused:
                break
        else:
            pytest.fail("the writer does not end")
    assert failures > 0
