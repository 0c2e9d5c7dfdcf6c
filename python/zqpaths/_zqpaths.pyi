from os import PathLike
from types import GenericAlias, TracebackType
from typing import (
    Any,
    AnyStr,
    Callable,
    Iterable,
    Iterator,
    List,
    Literal,
    Optional,
    Sequence,
    SupportsIndex,
    Tuple,
    Type,
    Union,
    overload,
)

import numpy
from numpy.typing import NDArray

__version__: str

_Path = Union[str, bytes, PathLike[str], PathLike[bytes]]
_Indices = Union[Iterable[SupportsIndex], NDArray[numpy.integer[Any]]]

class PathIterator(Iterator[AnyStr]):
    def __iter__(self) -> PathIterator[AnyStr]: ...
    def __next__(self) -> AnyStr: ...
    def __length_hint__(self) -> int: ...

class PathSequence(Sequence[AnyStr]):
    def __class_getitem__(cls, item: Any) -> GenericAlias: ...
    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: SupportsIndex) -> AnyStr: ...
    @overload
    def __getitem__(self, index: slice) -> List[AnyStr]: ...
    def __iter__(self) -> PathIterator[AnyStr]: ...
    def __reversed__(self) -> PathIterator[AnyStr]: ...
    def __contains__(self, path: object) -> bool: ...
    @overload
    def take(self, indices: _Indices, *, arrow_like: Literal[False] = False) -> List[AnyStr]: ...
    @overload
    def take(
        self, indices: _Indices, *, arrow_like: Literal[True]
    ) -> Tuple[NDArray[numpy.int64], NDArray[numpy.uint8]]: ...
    def index(
        self, path: object, start: SupportsIndex = 0, stop: Optional[SupportsIndex] = None
    ) -> int: ...
    def count(self, path: object) -> int: ...

class PathSet(PathSequence[AnyStr]):
    @property
    def file(self) -> str: ...
    def find(
        self,
        text: Optional[_Path] = None,
        *,
        glob: Optional[_Path] = None,
        regex: Optional[_Path] = None,
        ignore_case: bool = False,
    ) -> Selection[AnyStr]: ...
    def under(self, folder: _Path) -> Selection[AnyStr]: ...
    def sample(self, n: SupportsIndex, *, seed: Optional[SupportsIndex] = None) -> List[AnyStr]: ...
    def split(
        self,
        rank: SupportsIndex,
        of: SupportsIndex,
        *,
        epoch: Optional[SupportsIndex] = None,
        seed: Optional[SupportsIndex] = None,
    ) -> Selection[AnyStr]: ...
    def verify(self) -> List[str]: ...
    def __reduce__(self) -> Tuple[Any, ...]: ...

class Selection(PathSequence[AnyStr]):
    @property
    def positions(self) -> NDArray[numpy.int64]: ...
    def __reduce__(self) -> Tuple[Any, ...]: ...

class Writer:
    def __init__(
        self, file: _Path, mode: Literal["w", "a", "x"] = "w", *, packed: bool = False
    ) -> None: ...
    def add(self, path: _Path) -> None: ...
    def extend(self, paths: Iterable[_Path]) -> None: ...
    def commit(self) -> None: ...
    def discard(self) -> None: ...
    def __len__(self) -> int: ...
    def __enter__(self) -> Writer: ...
    def __exit__(
        self,
        exception_type: Optional[Type[BaseException]],
        exception: Optional[BaseException],
        traceback: Optional[TracebackType],
    ) -> None: ...

@overload
def open(file: _Path, *, as_bytes: Literal[False] = False) -> PathSet[str]: ...
@overload
def open(file: _Path, *, as_bytes: Literal[True]) -> PathSet[bytes]: ...
@overload
def open(file: _Path, *, as_bytes: bool) -> Union[PathSet[str], PathSet[bytes]]: ...
def index(
    directory: _Path,
    file: _Path,
    *,
    mode: Literal["w", "a", "x"] = "x",
    hidden: bool = True,
    follow: bool = False,
    one_file_system: bool = False,
    packed: bool = False,
    progress: Optional[Callable[[int], object]] = None,
    on_error: Optional[Callable[[str, str], object]] = None,
) -> PathSet[str]: ...
