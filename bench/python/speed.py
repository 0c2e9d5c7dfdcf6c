"""Times of one holder, in a process of its own: speed.py NAME FILE COUNT FOLDER. Prints JSON.

The least of several runs is taken: what others do on the machine only adds.
"""

import json
import random
import sys
import time

import numpy

import holders
from memory import pss_of

REPEATS = 5


def least(work, repeats=REPEATS):
    """The least time of a call, in seconds, and what it gave last."""
    best, given = float("inf"), None
    for _ in range(repeats):
        given = None
        begin = time.perf_counter()
        given = work()
        best = min(best, time.perf_counter() - begin)
    return best, given


def read_each(item, indices):
    for i in indices:
        item(i)


def measure(name, file, count, folder):
    before = pss_of("self")
    seconds, holder = least(lambda: holders.HOLDERS[name](file), 3)
    figures = {"open ms": 1e3 * seconds}
    chance = random.Random(1)
    indices = [chance.randrange(count) for _ in range(100_000)]
    seconds, _ = least(lambda: read_each(holder.item, indices))
    figures["item us"] = 1e6 * seconds / len(indices)
    figures["memory MB"] = (pss_of("self") - before) / 1e6
    some = numpy.array(indices[:10_000])
    taken = some.tolist() if isinstance(holder, holders.ListOfText) else some
    seconds, _ = least(lambda: holder.take(taken), 20)
    figures["take us"] = 1e6 * seconds / len(some)
    if isinstance(holder, holders.OurSet):
        seconds, _ = least(lambda: holder.paths.take(some, arrow_like=True), 20)
        figures["take arrays us"] = 1e6 * seconds / len(some)
    if hasattr(holder, "has"):
        paths = [holder.item(i) for i in indices[:10_000]]
        seconds, _ = least(lambda: [holder.has(path) for path in paths])
        figures["in us"] = 1e6 * seconds / len(paths)
    if hasattr(holder, "under"):
        seconds, found = least(lambda: holder.under(folder), 3)
        figures["under us"] = 1e6 * seconds / len(found)
    seconds, everything = least(holder.all, 3)
    figures["all M/s"] = len(everything) / 1e6 / seconds
    return figures


if __name__ == "__main__":
    holder_name, file_name, path_count, folder_name = sys.argv[1:]
    print(json.dumps(measure(holder_name, file_name, int(path_count), folder_name)))
