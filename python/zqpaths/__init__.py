"""Millions of file paths in little memory.

A set of paths is a file. Opening it takes microseconds, since nothing is loaded, and all processes
that read it share its bytes: eight workers of a data loader need no more memory than one.

>>> import zqpaths
>>> with zqpaths.Writer("data.zqp") as writer:
...     writer.extend(["/data/a.txt", "/data/b.txt", "/data/b/c.txt"])
>>> s = zqpaths.open("data.zqp")
>>> len(s), s[0], s[-1]
(3, '/data/a.txt', '/data/b/c.txt')
>>> list(s.under("/data/b"))
['/data/b/c.txt']

Arrays are those of numpy, which is needed for them alone. zqpaths.torch gives sets to loaders of torch;
zqpaths.dask gives them to the workers of Dask, and has these make some.
"""

from collections.abc import Sequence as _Sequence

from zqpaths._errors import (
    DeniedError,
    Error,
    ExistsError,
    NotFoundError,
    SystemRefusal,
    UseError,
)
from zqpaths._zqpaths import (
    PathIterator,
    PathSequence,
    PathSet,
    Selection,
    Writer,
    __version__,
    index,
    merge,
    open,
)

__all__ = [
    "DeniedError",
    "Error",
    "ExistsError",
    "NotFoundError",
    "PathIterator",
    "PathSequence",
    "PathSet",
    "Selection",
    "SystemRefusal",
    "UseError",
    "Writer",
    "__version__",
    "index",
    "merge",
    "open",
]

_Sequence.register(PathSequence)
