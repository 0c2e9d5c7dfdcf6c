"""A DataLoader with eight workers over all paths: loaders.py NAME FILE COUNT METHOD. Prints JSON.

Each path is read once, in whole batches, in another order. What comes out is compared by a sum that
does not depend on the order; the memory is that of the parent and all workers at the end of the epoch,
above the same loader over numbers alone.
"""

import json
import os
import sys
import time
import zlib

import numpy
import torch.utils.data

import holders
from memory import WORKERS, pss_of
from zqpaths.torch import PathDataset

BATCH = 1000


def sum_of(paths):
    """Does not depend on their order."""
    return sum(zlib.crc32(os.fsencode(path)) for path in paths)


class Sums(torch.utils.data.Dataset):
    """Positions in, the sum of their paths out, so that it is not the transfer that is measured."""

    def __init__(self, paths):
        self.paths = paths

    def __getitem__(self, positions):
        if self.paths is None:
            return 0
        if isinstance(self.paths, list):
            return sum_of([self.paths[i] for i in positions.tolist()])
        return sum_of(self.paths[positions])


def as_it_is(batch):
    return batch


def epoch(paths, count, method):
    """The sum of all paths, seconds, and the bytes that parent and workers take at the end."""
    order = numpy.random.default_rng(1).permutation(count)
    batches = [order[first:first + BATCH] for first in range(0, count, BATCH)]
    loader = torch.utils.data.DataLoader(
        Sums(paths), sampler=batches, batch_size=None, num_workers=WORKERS,
        multiprocessing_context=method, collate_fn=as_it_is, persistent_workers=True)
    sums = iter(loader)
    total = next(sums)  # by then the workers have started
    begin = time.perf_counter()
    total += sum(sums)
    seconds = time.perf_counter() - begin
    workers = [worker.pid for worker in loader._iterator._workers]
    return total, seconds, sum(pss_of(process) for process in ["self", *workers])


def measure(name, file, count, method):
    _, _, without = epoch(None, count, method)
    paths = holders.HOLDERS[name](file).paths
    if not isinstance(paths, list):
        paths = PathDataset(paths)
    total, seconds, memory = epoch(paths, count, method)
    return {"MB": (memory - without) / 1e6, "M/s": count / 1e6 / seconds, "sum": total}


if __name__ == "__main__":
    holder_name, file_name, path_count, start_method = sys.argv[1:]
    print(json.dumps(measure(holder_name, file_name, int(path_count), start_method)))
