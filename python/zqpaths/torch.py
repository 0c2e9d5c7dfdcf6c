"""Sets of paths as data sets of torch.

>>> import torch, zqpaths.torch
>>> dataset = zqpaths.torch.PathDataset(zqpaths.open("data.zqp"), transform=len)
>>> len(dataset), dataset[2], dataset[[2, 0]]
(3, 13, [13, 11])

A loader gives the dataset one position at a time, or a whole batch of them, which is several times
faster to look up. For that, have a BatchSampler choose the positions, and the loader make no batches
itself:

>>> from torch.utils.data import BatchSampler, DataLoader, SequentialSampler, default_collate
>>> batches = BatchSampler(SequentialSampler(dataset), batch_size=2, drop_last=False)
>>> loader = DataLoader(dataset, sampler=batches, batch_size=None, collate_fn=default_collate)
>>> list(loader)
[tensor([11, 11]), tensor([13])]

Workers share the file, whether they are forked or spawned (then the dataset is pickled, and with it
the name of the file). A share of a shuffle is a dataset, too, that takes no memory for its order:

>>> share = zqpaths.torch.PathDataset(dataset.paths.split(0, of=2, seed=1, epoch=4))
>>> len(share)
2
"""

from __future__ import annotations

from typing import (
    Any,
    AnyStr,
    Callable,
    Generic,
    Iterable,
    List,
    Optional,
    SupportsIndex,
    Union,
    cast,
)

import torch.utils.data

from zqpaths._zqpaths import PathSequence

__all__ = ["PathDataset"]


class PathDataset(torch.utils.data.Dataset, Generic[AnyStr]):  # type: ignore[misc]
    """A map-style dataset of the paths of a set or a selection.

    A sample is a path, or what transform(path) makes of it: an image that is read, for example.
    dataset[position] is a sample, dataset[[position, ...]] is the list of several, of which the
    paths are looked up together; a tensor or an array of positions will do.
    """

    def __init__(
        self, paths: PathSequence[AnyStr], transform: Optional[Callable[[AnyStr], Any]] = None
    ) -> None:
        self.paths: PathSequence[AnyStr] = paths
        self.transform: Optional[Callable[[AnyStr], Any]] = transform

    def __len__(self) -> int:
        return len(self.paths)

    def __getitem__(self, index: Union[SupportsIndex, Iterable[SupportsIndex]]) -> Any:
        # Tensors and arrays of no dimension are positions, though they look like iterables.
        if hasattr(index, "__iter__") and getattr(index, "ndim", 1) != 0:
            return self.__getitems__(cast(Iterable[SupportsIndex], index))
        path = self.paths[cast(SupportsIndex, index)]
        return path if self.transform is None else self.transform(path)

    def __getitems__(self, indices: Iterable[SupportsIndex]) -> List[Any]:
        """The samples at these positions, as loaders ask for them that know of it."""
        paths: List[Any] = self.paths.take(indices)
        return paths if self.transform is None else [self.transform(path) for path in paths]
