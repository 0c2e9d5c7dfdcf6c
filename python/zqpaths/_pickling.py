"""What pickle brings sets and selections back with."""

from __future__ import annotations

import os
from typing import AnyStr, Union

from zqpaths import _zqpaths
from zqpaths._errors import exception_of
from zqpaths._zqpaths import PathSet, Selection


def reopened(
    file: bytes, as_bytes: bool, fingerprint: int, partial: bool = False
) -> Union[PathSet[str], PathSet[bytes]]:
    """The set in a file, which must be as it was."""
    opened = _zqpaths.open(file, as_bytes=as_bytes, partial=partial)
    if opened.fingerprint != fingerprint:
        reason = f"{os.fsdecode(file)}: has changed since the set was pickled"
        raise exception_of("changed", reason, 0, None)
    return opened


def listed(paths: PathSet[AnyStr], positions: bytes) -> Selection[AnyStr]:
    """The paths at positions, which are numbers of 64 bits in the machine's order."""
    return _zqpaths._listed(paths, positions)


def dealt(paths: PathSet[AnyStr], rank: int, of: int) -> Selection[AnyStr]:
    """The share of a reader."""
    return paths.split(rank, of)


def shuffled(paths: PathSet[AnyStr], rank: int, of: int, seed: int, epoch: int) -> Selection[AnyStr]:
    """The share of a reader of a shuffle."""
    return paths.split(rank, of, seed=seed, epoch=epoch)
