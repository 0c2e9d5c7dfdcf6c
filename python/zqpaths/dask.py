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

import contextlib
import functools
import inspect
import itertools
import operator
import os
import pickle
import shutil
import uuid
from typing import (
    Any,
    AnyStr,
    Callable,
    Iterable,
    Iterator,
    List,
    Literal,
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
from zqpaths._errors import UseError, exception_of
from zqpaths._zqpaths import PathSequence, PathSet, Writer

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

    Raises what zqpaths.open raises; TypeError, ValueError. O(partitions); no path is read.
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


def _write(
    paths: Iterable[_Path], *, part: int, folder: str, packed: bool
) -> List[Tuple[str, int]]:
    """Makes a set file of the partition with this number: its name, and how many paths it has.

    Dask may run a task again, also while it still runs elsewhere. So each time it has another file.
    """
    # A task makes its generator anew when it is run again; one that Dask keeps it gives again.
    if inspect.isgenerator(paths) and inspect.getgeneratorstate(paths) != inspect.GEN_CREATED:
        raise UseError(f"partition {part} is a generator, of which some paths are gone already")
    file = os.path.join(folder, f"{part}-{uuid.uuid4().hex}.zqp")
    with Writer(file, "x", packed=packed) as writer:
        writer.extend(paths)
    return [(file, len(writer))]


def _written(parts: dask.bag.Bag, folder: str, packed: bool) -> dask.bag.Bag:
    """What _write gives for each partition.

    A task has its partition alone to wait for, so that Dask makes one of both, and paths go from one
    to the other without being kept.
    """
    write = functools.partial(_write, folder=folder, packed=packed)
    name = f"zqpaths-index-{tokenize(parts, folder)}"
    tasks = {
        (name, part): (functools.partial(write, part=part), (parts.name, part))
        for part in range(parts.npartitions)
    }
    graph = HighLevelGraph.from_collections(name, tasks, dependencies=[parts])
    return dask.bag.Bag(graph, name, parts.npartitions)


def _remove(files: Iterable[str]) -> None:
    for file in files:
        with contextlib.suppress(FileNotFoundError):
            os.remove(file)


class _FilesOfRun:
    """The set files that the workers make in one call of index, in the folder of the set.

    They are made in a folder of their own in it, all.zqs.d/4be1f02c/, and keep() gives those that
    count their names: all.zqs.d/4be1f02c-00000.zqp. Names of two calls differ, so that a set that is
    to be replaced stays whole until there is the new one.
    """

    def __init__(self, folder: str) -> None:
        self.folder = folder
        self.run = os.path.join(folder, uuid.uuid4().hex[:8])
        self.kept: List[str] = []
        os.makedirs(self.run)

    def keep(self, files: List[Tuple[str, int]]) -> None:
        """Those with paths, which are given in the order of the partitions."""
        for part, (file, count) in enumerate(files):
            if count > 0:
                kept = f"{self.run}-{part:05}.zqp"
                os.rename(file, kept)
                self.kept.append(kept)
        folder = os.open(self.folder, os.O_RDONLY)
        try:
            os.fsync(folder)  # the names are on the device before a set names them
        finally:
            os.close(folder)

    def remove_unfinished(self) -> None:
        """Also those of tasks that still run: their folder has another name, and they make no more."""
        unfinished = self.run + ".removed"
        os.rename(self.run, unfinished)
        shutil.rmtree(unfinished, ignore_errors=True)
        with contextlib.suppress(OSError):
            os.rmdir(self.folder)  # if nothing is in it


@contextlib.contextmanager
def _files_of_run(folder: str) -> Iterator[_FilesOfRun]:
    files = _FilesOfRun(folder)
    try:
        yield files
    except BaseException:
        _remove(files.kept)
        raise
    finally:
        files.remove_unfinished()


def _former_files(file: str, folder: str, mode: str) -> List[str]:
    """What of the set that is to be replaced is in its folder. Raises Error if it may not be."""
    if mode not in ("w", "x"):
        raise ValueError(f"mode {mode!r} is neither 'w' nor 'x'")
    if not os.path.lexists(file):
        return []
    if mode == "x":
        raise exception_of("exists", f"{file}: is there already", 0, file)
    former = _zqpaths.open(file, partial=True).files
    return [name for name in former if os.path.dirname(name) == folder]


def index(
    parts: Union[dask.bag.Bag, Iterable[Any]],
    file: _Path,
    *,
    mode: Literal["w", "x"] = "x",
    packed: bool = False,
    **options: Any,
) -> PathSet[str]:
    """Makes a set of paths that workers have, and opens it: a PathSet.

    parts is a dask.bag.Bag of paths, str, bytes or os.PathLike, or an iterable of Delayed objects or
    Futures, each an iterable of paths. Each partition becomes a set file, made by the worker that has
    it, in the folder x.zqs.d for the set x.zqs; file is a set of sets that names them (as
    zqpaths.merge makes one), with the paths in the order of the partitions.

    >>> short = zqpaths.dask.bag(s, partition_size=1).filter(lambda path: len(path) < 12)
    >>> zqpaths.dask.index(short, "short.zqs", scheduler="threads")[:]
    ['/data/a.txt', '/data/b.txt']

    Lists of paths, one a line, of which large ones are read by many workers:

    >>> import dask.bag
    >>> with open("one.txt", "w") as one:
    ...     print("/data/d.txt", "/data/e.txt", sep="\\n", file=one)
    >>> lines = dask.bag.read_text("*.txt", blocksize="64MiB", linedelimiter="\\n",
    ...                            errors="surrogateescape")
    >>> zqpaths.dask.index(lines.map(str.rstrip, "\\n"), "lists.zqs", scheduler="threads")[:]
    ['/data/d.txt', '/data/e.txt']

    mode and packed are those of zqpaths.Writer; with "w" the files that the former set has in the
    folder are removed when the new one is there. options are those of compute. If a task fails or is
    cancelled, its exception is raised and everything is as it was before. A task that Dask runs more
    than once, on whatever workers, counts once.

    Raises what compute raises, ExistsError and other OSErrors, TypeError, ValueError.
    """
    name = os.path.abspath(os.fsdecode(file))  # wherever workers are
    folder = name + ".d"
    if not isinstance(parts, dask.bag.Bag):
        parts = _bag_of(parts)
    former = _former_files(name, folder, mode)
    with _files_of_run(folder) as files:
        files.keep(_written(parts, files.run, packed).compute(**options))
        made = _zqpaths.merge(files.kept, file, mode=mode)
    _remove(former)
    return made


def _bag_of(parts: Iterable[Any]) -> dask.bag.Bag:
    """A bag of Delayed objects or Futures; there may be none."""
    given = list(parts)
    if any(isinstance(part, (str, bytes)) or not hasattr(part, "key") for part in given):
        raise TypeError("parts are a dask.bag.Bag, or an iterable of Delayed objects or Futures")
    return dask.bag.from_delayed(given) if given else dask.bag.from_sequence([])
