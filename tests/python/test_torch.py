"""Loaders of torch, whose workers are forked or spawned, and the examples with images."""

import pathlib
import pickle
import subprocess
import sys

import numpy
import PIL.Image
import pytest
import torch
from torch.utils.data import BatchSampler, DataLoader, RandomSampler, SequentialSampler

import zqpaths
import zqpaths.torch
from conftest import THREE

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"


def size_of(path):
    return torch.tensor(len(path))


def test_gives_samples(three):
    dataset = zqpaths.torch.PathDataset(three)
    assert len(dataset) == 3
    assert dataset[1] == dataset[-2] == dataset[torch.tensor(1)] == dataset[numpy.int64(1)] == THREE[1]
    for batch in [[2, 0], (2, 0), torch.tensor([2, 0]), numpy.array([2, 0]), iter([2, 0])]:
        assert dataset[batch] == [THREE[2], THREE[0]]
    assert dataset.__getitems__([2, 0]) == [THREE[2], THREE[0]]
    assert dataset[[]] == []


def test_gives_what_is_made_of_paths(three):
    dataset = zqpaths.torch.PathDataset(three.find("b"), size_of)
    assert [int(sample) for sample in dataset[[0, 1]]] == [11, 13]
    assert int(dataset[1]) == 13


@pytest.mark.parametrize("wrong, refusal", [(3, IndexError), ([0, 3], IndexError), ("0", TypeError)])
def test_refuses_what_a_set_refuses(three, wrong, refusal):
    with pytest.raises(refusal):
        zqpaths.torch.PathDataset(three)[wrong]


def test_is_pickled_by_the_name_of_the_file(many):
    dataset = zqpaths.torch.PathDataset(zqpaths.open(many[1]), size_of)
    bytes_of_dataset = pickle.dumps(dataset)
    assert len(bytes_of_dataset) < 1000
    assert pickle.loads(bytes_of_dataset)[[7, 8]] == dataset[[7, 8]]


def test_is_of_sets_of_sets_too(three, many, tmp_path):
    s = zqpaths.merge([three.file, many[1]], tmp_path / "all.zqs")
    dataset = zqpaths.torch.PathDataset(s, size_of)
    again = pickle.loads(pickle.dumps(dataset))
    assert again[[0, 7]] == dataset[[0, 7]] == [len(THREE[0]), len(many[0][4])]


@pytest.mark.parametrize("method", ["fork", "spawn"])
def test_gives_whole_batches_in_workers(many, method):
    paths, file = many
    dataset = zqpaths.torch.PathDataset(zqpaths.open(file))
    batches = BatchSampler(RandomSampler(dataset), batch_size=1000, drop_last=False)
    loader = DataLoader(dataset, sampler=batches, batch_size=None, num_workers=2,
                        multiprocessing_context=method)
    loaded = [batch for batch in loader]
    assert [len(batch) for batch in loaded] == [1000] * 150
    assert loaded[0] != paths[:1000]
    assert sorted(sum(loaded, [])) == sorted(paths)


@pytest.mark.parametrize("method", ["fork", "spawn"])
def test_gives_samples_in_workers(many, method):
    paths, file = many
    part = zqpaths.torch.PathDataset(zqpaths.open(file).split(0, 100), size_of)
    loader = DataLoader(part, batch_size=64, num_workers=2, multiprocessing_context=method)
    assert torch.cat(list(loader)).tolist() == [len(path) for path in paths[::100]]


def test_reads_a_shuffle_in_order(many):
    paths, file = many
    s = zqpaths.open(file)
    shares = [zqpaths.torch.PathDataset(s.split(rank, 3, seed=5, epoch=1)) for rank in range(3)]
    loaded = []
    for share in shares:
        batches = BatchSampler(SequentialSampler(share), batch_size=5000, drop_last=False)
        for batch in DataLoader(share, sampler=batches, batch_size=None, num_workers=1):
            loaded += batch
    assert sorted(loaded) == sorted(paths) and loaded != paths


@pytest.fixture
def images(tmp_path):
    """A folder of 70 images, red in one half and blue in the other."""
    for i in range(70):
        folder = tmp_path / "images" / f"{i % 7}"
        folder.mkdir(parents=True, exist_ok=True)
        colour = (255, 0, 0) if i % 2 else (0, 0, 255)
        PIL.Image.new("RGB", (80, 50), colour).save(folder / f"caf\xe9-{i}.png")
    return tmp_path / "images"


@pytest.mark.parametrize("example", ["image_loader.py", "image_loader_numpy.py"])
def test_examples_read_images(images, tmp_path, example):
    for _ in range(2):  # the second time, the paths are listed already
        run = subprocess.run([sys.executable, EXAMPLES / example, images, "2"], cwd=tmp_path,
                             text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        assert run.returncode == 0, run.stderr
        assert run.stdout == ("epoch 0: 70 images, mean colour 0.500 0.000 0.500\n"
                              "epoch 1: 70 images, mean colour 0.500 0.000 0.500\n")
    assert len(zqpaths.open(tmp_path / "images.zqp")) == 70
