"""The exceptions of zqpaths; the package shows the classes."""

from __future__ import annotations

import errno
import os
from typing import Any, Dict, Tuple, Type


class Error(Exception):
    """What a set, or its file, refuses.

    kind tells what it is about:

    ============  ========================================================  ===============
    kind          what is wrong                                             also is
    ============  ========================================================  ===============
    "not_found"   there is no such file                                     NotFoundError
    "exists"      there is a file, and it may not be replaced               ExistsError
    "no_space"    the device or a quota is full                             SystemRefusal
    "system"      the system refuses something else                         SystemRefusal
    "wrong_use"   an argument that cannot be meant, such as an empty path   UseError
    "not_a_set"   a file that is none of ours, or of a later version
    "damaged"     a set whose bytes are not those that were saved
    "held"        another process writes to the set
    "changed"     a pickled set whose file is another one now
    ============  ========================================================  ===============
    """

    kind: str = "system"


class UseError(Error, ValueError):
    """An argument that cannot be meant: a ValueError."""

    kind = "wrong_use"


class SystemRefusal(Error, OSError):
    """What the system refuses: an OSError, with errno and filename where they are known."""


class NotFoundError(SystemRefusal, FileNotFoundError):
    """There is no such file: a FileNotFoundError."""

    kind = "not_found"


class ExistsError(SystemRefusal, FileExistsError):
    """There is a file, and it may not be replaced: a FileExistsError."""

    kind = "exists"


class DeniedError(SystemRefusal, PermissionError):
    """The file may not be read or written: a PermissionError."""


_REFUSALS: Dict[str, Tuple[Type[SystemRefusal], int]] = {
    "not_found": (NotFoundError, errno.ENOENT),
    "exists": (ExistsError, errno.EEXIST),
    "no_space": (SystemRefusal, errno.ENOSPC),
    "system": (SystemRefusal, 0),
}


def exception_of(kind: str, text: str, code: int, file: Any) -> Error:
    """The exception for an error of the library about a file, which may be None."""
    if kind == "wrong_use":
        return UseError(text)
    error: Error
    if kind in _REFUSALS:
        refusal, usual_code = _REFUSALS[kind]
        code = code or usual_code
        if code in (errno.EACCES, errno.EPERM):
            refusal = DeniedError
        if code == 0:
            error = refusal(text)
        elif file is None:
            error = refusal(code, text)
        else:
            error = refusal(code, os.strerror(code), file)
    else:
        error = Error(text)
    error.kind = kind
    return error
