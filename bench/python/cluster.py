"""Extensions of all paths counted by workers of Dask in one pass: cluster.py FILE WORKERS PROGRAM.

Prints JSON. The workers are processes on this machine. The counts are compared with those of one process
and of what the program prints, `zqpaths list FILE -0 --fields extension`.
"""

import collections
import json
import os
import subprocess
import sys
import time

import distributed

import zqpaths.dask


def extension_of(path):
    """As zqpaths has it: that of the last name, which may end in separators."""
    return os.path.splitext(path.rstrip("/"))[1][1:]


def counts_of_workers(file, workers):
    """The counts; seconds until all workers are there, and for counting, the first time and later."""
    begin = time.perf_counter()
    with distributed.LocalCluster(n_workers=workers, threads_per_worker=1, host="127.0.0.1",
                                  dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            client.wait_for_workers(workers)
            times = [time.perf_counter() - begin]
            for size in range(100_000, 100_003):  # of another bag each time, so that none is known
                begin = time.perf_counter()
                extensions = zqpaths.dask.bag(file, partition_size=size).map(extension_of)
                counts = dict(extensions.frequencies().compute())
                times.append(time.perf_counter() - begin)
    return counts, {"start s": times[0], "first s": times[1], "counting s": min(times[2:])}


def counts_of_process(file):
    """The counts; seconds in this process alone."""
    begin = time.perf_counter()
    counts = collections.Counter(map(extension_of, zqpaths.open(file)))
    return dict(counts), {"counting s": time.perf_counter() - begin}


def counts_of_program(file, program):
    """The counts; seconds until all of it was printed and counted."""
    begin = time.perf_counter()
    printed = subprocess.run([program, "list", file, "-0", "--fields", "extension"], check=True,
                             stdout=subprocess.PIPE).stdout
    counts = collections.Counter(map(os.fsdecode, printed.split(b"\0")[:-1]))
    return dict(counts), {"counting s": time.perf_counter() - begin}


def measure(file, workers, program):
    of_workers, seconds = counts_of_workers(file, workers)
    of_process, process_seconds = counts_of_process(file)
    of_program, program_seconds = counts_of_program(file, program)
    assert of_workers == of_process == of_program, "counts differ"
    assert sum(of_workers.values()) == len(zqpaths.open(file))
    rows = {f"{workers} workers": seconds, "one process": process_seconds,
            "zqpaths list": program_seconds}
    print(json.dumps({"extensions": len(of_workers), "rows": rows}))


if __name__ == "__main__":
    file_name, worker_count, program_name = sys.argv[1:]
    measure(file_name, int(worker_count), program_name)
