"""zqpaths.dask.index: a set that workers of Dask make, each some files of it."""

from __future__ import annotations

import contextlib
import functools
import inspect
import os
import shutil
import uuid
from typing import Any, Iterable, Iterator, List, Literal, Tuple, Union

import dask.bag
from dask.base import tokenize
from dask.delayed import Delayed
from dask.highlevelgraph import HighLevelGraph

from zqpaths import _zqpaths
from zqpaths._errors import UseError, exception_of
from zqpaths._zqpaths import PathSet, Writer

_Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


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


def _given(paths: Iterable[_Path]) -> Iterable[_Path]:
    return paths


def _bag_of(parts: Iterable[Any]) -> dask.bag.Bag:
    """A bag of Delayed objects or Futures; there may be none.

    What dask.bag.from_delayed makes of them would have the paths of an iterator as a list first, and
    none of one that was read before.
    """
    given = list(parts)
    if any(isinstance(part, (str, bytes)) or not hasattr(part, "key") for part in given):
        raise TypeError("parts are a dask.bag.Bag, or an iterable of Delayed objects or Futures")
    if not given:
        return dask.bag.from_sequence([])
    delayed = [part if isinstance(part, Delayed) else dask.delayed(part) for part in given]
    name = f"zqpaths-parts-{tokenize(*delayed)}"
    tasks = {(name, i): (_given, part.key) for i, part in enumerate(delayed)}
    graph = HighLevelGraph.from_collections(name, tasks, dependencies=delayed)
    return dask.bag.Bag(graph, name, len(delayed))


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
