"""Memory of eight workers that read random paths: memory.py NAME FILE COUNT METHOD. Prints JSON.

Pss counts a page that several processes share in parts, so that the sum over all of them is what they
take together. It is taken of the parent and the workers while all are there, once when they hold
nothing and once when they have read.
"""

import json
import multiprocessing
import random
import sys

WORKERS = 8
READS = 200_000


def pss_of(process):
    """Bytes."""
    with open(f"/proc/{process}/smaps_rollup") as lines:
        for line in lines:
            if line.startswith("Pss:"):
                return 1024 * int(line.split()[1])
    raise ValueError("no Pss")


def work(name, file, holder, count, rank, ready, measured):
    """Reads random paths, or none if there is nothing to read, and waits to be measured."""
    import holders

    if holder is None and file is not None:
        holder = holders.HOLDERS[name](file)
    chance = random.Random(rank)
    for _ in range(READS if holder is not None else 0):
        holder.item(chance.randrange(count))
    ready.wait()
    measured.wait()


def pss_of_all(context, arguments):
    ready, measured = context.Barrier(WORKERS + 1), context.Barrier(WORKERS + 1)
    workers = [context.Process(target=work, args=(*arguments, rank, ready, measured))
               for rank in range(WORKERS)]
    for worker in workers:
        worker.start()
    ready.wait()
    total = sum(pss_of(process) for process in ["self", *(worker.pid for worker in workers)])
    measured.wait()
    for worker in workers:
        worker.join()
    return total


def measure(name, file, count, method):
    import holders

    context = multiprocessing.get_context(method)
    without = pss_of_all(context, (name, None, None, count))
    # Forked workers have what the parent has opened; spawned ones open it themselves.
    holder = holders.HOLDERS[name](file) if method == "fork" else None
    used = pss_of_all(context, (name, file, holder, count))
    return {"MB": (used - without) / 1e6}


if __name__ == "__main__":
    holder_name, file_name, path_count, start_method = sys.argv[1:]
    print(json.dumps(measure(holder_name, file_name, int(path_count), start_method)))
