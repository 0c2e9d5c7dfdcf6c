"""Sets of paths as collections of Dask, and sets that its workers make.

>>> import dask.bag, zqpaths.dask
>>> paths = zqpaths.dask.bag("data.zqp", partition_size=2)
>>> paths.npartitions, paths.map(len).max().compute(scheduler="threads")
(2, 13)

A partition is a range of positions: what a worker is given is the name of the file, its fingerprint and
two numbers. It opens the set itself, once in each process, and raises Error if the file has changed
since. So the workers have to find the files under the same names, as on one machine, or on a file
system that all of them share.

The schedulers are those of Dask: a dask.distributed.Client where there is one, or scheduler="threads"
and so on for compute.
"""

from __future__ import annotations

import functools
import itertools
import operator
import os
import pickle
from typing import (
    Any,
    AnyStr,
    Callable,
    Iterator,
    List,
    NamedTuple,
    Optional,
    Sequence,
    SupportsIndex,
    Tuple,
    Union,
    cast,
    overload,
)

import dask.array
import dask.bag
import numpy
from dask.base import tokenize
from dask.highlevelgraph import HighLevelGraph
from numpy.typing import NDArray

from zqpaths import _pickling, _zqpaths
from zqpaths._dask_index import index
from zqpaths._zqpaths import PathSequence

__all__ = ["Partition", "array_of_numbers", "bag", "index"]

_Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
_Paths = Union[PathSequence[str], PathSequence[bytes], _Path]
_Positions = Union[range, NDArray[numpy.int64]]

_PARTITION_SIZE = 100_000  # read in less than a tenth of a second
_READ_AT_ONCE = 4096
_OPENED_AT_ONCE = 16


@functools.lru_cache(maxsize=_OPENED_AT_ONCE)
def _opened(pickled: bytes) -> PathSequence[Any]:
    """What was pickled, which names a file and tells what it was; kept for the next partition."""
    paths: PathSequence[Any] = pickle.loads(pickled)
    return paths


class Partition(Sequence[AnyStr]):
    """The paths of a partition: a sequence that reads them when they are asked for.

    Where one travels between processes, it is what the worker was given, not the paths; so a bag of
    paths that is computed or persisted as it is costs next to nothing, and whoever gets it reads them.

    >>> import dask
    >>> (partition,) = dask.compute(*zqpaths.dask.bag(s).to_delayed(), scheduler="threads")
    >>> partition
    <zqpaths.dask.Partition of 3 paths>
    >>> len(partition), partition[0], partition[1:]
    (3, '/data/a.txt', ['/data/b.txt', '/data/b/c.txt'])
    """

    def __init__(self, source: bytes, positions: _Positions) -> None:
        self._source = source
        self._positions = positions

    def __len__(self) -> int:
        return len(self._positions)

    @overload
    def __getitem__(self, index: SupportsIndex) -> AnyStr: ...
    @overload
    def __getitem__(self, index: slice) -> List[AnyStr]: ...
    def __getitem__(self, index: Union[SupportsIndex, slice]) -> Union[AnyStr, List[AnyStr]]:
        paths: PathSequence[AnyStr] = _opened(self._source)
        if not isinstance(index, slice):
            return paths[self._positions[operator.index(index)]]
        positions = self._positions[index]
        if isinstance(positions, range) and positions.step == 1:
            return paths[positions.start : positions.stop]
        return paths.take(positions)

    def __iter__(self) -> Iterator[AnyStr]:
        for first in range(0, len(self), _READ_AT_ONCE):
            yield from self[first : first + _READ_AT_ONCE]

    def __repr__(self) -> str:
        return f"<zqpaths.dask.Partition of {len(self)} paths>"


def _partition(source: bytes, positions: _Positions) -> Partition[Any]:
    """A partition of a bag, of a set that is there and has not changed."""
    _opened(source)
    return Partition(source, positions)


def _positions_at(source: bytes, positions: _Positions) -> NDArray[numpy.int64]:
    """A chunk of an array."""
    if isinstance(positions, range):
        return _opened(source)._positions(positions.start, positions.stop)
    return positions


def _limits(
    count: int, partition_size: Optional[SupportsIndex], npartitions: Optional[SupportsIndex]
) -> List[int]:
    """Where each partition begins, and where the last one ends. There is one at least."""
    if partition_size is not None and npartitions is not None:
        raise TypeError("give partition_size or npartitions, not both")
    if npartitions is not None:
        parts = operator.index(npartitions)
        if parts < 1:
            raise ValueError(f"npartitions {parts} is less than 1")
        parts = max(1, min(parts, count))
        return [count * i // parts for i in range(parts + 1)]
    size = _PARTITION_SIZE if partition_size is None else operator.index(partition_size)
    if size < 1:
        raise ValueError(f"partition_size {size} is less than 1")
    return [*range(0, max(1, count), size), count]


def _shortest(positions: NDArray[numpy.int64]) -> _Positions:
    """Ascending positions as a range, where they are neighbours."""
    if len(positions) == 0:
        return range(0)
    first, last = int(positions[0]), int(positions[-1])
    return range(first, last + 1) if last - first == len(positions) - 1 else positions


class _Partitions(NamedTuple):
    name: str  # the same for the same paths and partitions
    source: bytes  # what workers open, pickled
    positions: List[_Positions]  # in it, for each partition
    sizes: Tuple[int, ...]

    def graph(self, read: Callable[[bytes, _Positions], Any]) -> HighLevelGraph:
        tasks = {(self.name, i): (read, self.source, p) for i, p in enumerate(self.positions)}
        return HighLevelGraph.from_collections(self.name, tasks, dependencies=[])


def _partitions(
    kind: str,
    given: _Paths,
    partition_size: Optional[SupportsIndex],
    npartitions: Optional[SupportsIndex],
) -> _Partitions:
    paths: PathSequence[Any]
    paths = given if isinstance(given, PathSequence) else _zqpaths.open(given)
    limits = _limits(len(paths), partition_size, npartitions)
    spans = list(itertools.starmap(range, zip(limits, limits[1:])))
    name = f"{kind}-{tokenize(pickle.dumps(paths), limits)}"
    source: PathSequence[Any] = paths
    positions: List[_Positions] = [*spans]
    make, arguments = cast(Tuple[Any, Any], paths.__reduce__())
    if make is _pickling.listed:  # a partition takes its own positions along, not those of all
        source, listed = arguments[0], paths._positions(0, len(paths))
        positions = [_shortest(listed[span.start : span.stop]) for span in spans]
    return _Partitions(name, pickle.dumps(source), positions, tuple(map(len, spans)))


def bag(
    paths: _Paths,
    *,
    partition_size: Optional[SupportsIndex] = None,
    npartitions: Optional[SupportsIndex] = None,
) -> dask.bag.Bag:
    """A dask.bag.Bag of paths, in their order.

    paths is a set that is open, a selection of its paths, or the name of the file of a set; they are
    str or bytes as in it. There are partition_size paths in each partition, fewer in the last one, or
    npartitions partitions that differ by one path at most (fewer partitions where there are fewer
    paths); 100,000 paths in each if neither is given.

    >>> suffixes = zqpaths.dask.bag(s).map(lambda path: path.rpartition(".")[2])
    >>> suffixes.frequencies().compute(scheduler="threads")
    [('txt', 3)]

    What travels is small for shares, too, also those of a shuffle, which workers compute, and for
    found paths that are neighbours; of others, a partition takes its positions along.

    >>> shuffled = zqpaths.dask.bag(s.split(0, of=1, seed=7), npartitions=3)
    >>> sorted(shuffled.compute(scheduler="threads")) == sorted(s)
    True

    Raises what zqpaths.open raises; TypeError, ValueError. O(partitions + paths that were found); no
    path is read.
    """
    made = _partitions("zqpaths", paths, partition_size, npartitions)
    return dask.bag.Bag(made.graph(_partition), made.name, len(made.positions))


def array_of_numbers(
    paths: _Paths,
    *,
    partition_size: Optional[SupportsIndex] = None,
    npartitions: Optional[SupportsIndex] = None,
) -> dask.array.Array:
    """A dask.array of int64: for each path of bag(paths), its position in the set.

    Positions count from 0, as everywhere in Python. The arguments are those of bag, and a chunk has
    the positions of the paths that the partition of the bag has.

    >>> numbers = zqpaths.dask.array_of_numbers(s, partition_size=2)
    >>> numbers.chunks, numbers[::-1].compute(scheduler="threads")
    (((2, 1),), array([2, 1, 0]))
    >>> zqpaths.dask.array_of_numbers(s.under("/data/b")).compute(scheduler="threads")
    array([2])
    """
    made = _partitions("zqpaths-numbers", paths, partition_size, npartitions)
    return dask.array.Array(
        made.graph(_positions_at), made.name, chunks=(made.sizes,), dtype=numpy.int64
    )
