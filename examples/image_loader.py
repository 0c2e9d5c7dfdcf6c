#!/usr/bin/env python3
"""Reads a folder of images with four worker processes, in batches and in another order each epoch.

    examples/image_loader.py FOLDER [EPOCHS]

The paths are listed once, into images.zqp in the working directory; remove it when images have come
or gone. The workers share that file: whatever the number of images, a worker needs no list of its own.
"""

import os
import sys

import numpy
import PIL.Image
import torch
import torch.utils.data

import zqpaths
import zqpaths.torch

SET = "images.zqp"
SIZE = 64
BATCH = 32


def read(path):
    """An image as numbers from 0 to 1, one plane a colour."""
    with PIL.Image.open(path) as image:
        pixels = numpy.asarray(image.convert("RGB").resize((SIZE, SIZE)), dtype=numpy.float32)
    return torch.from_numpy(pixels / 255).permute(2, 0, 1)


def batches_of(paths, epoch):
    """The images of an epoch. A share of 1 reader is all of them, shuffled, without a list."""
    dataset = zqpaths.torch.PathDataset(paths.split(0, of=1, seed=42, epoch=epoch), read)
    positions = torch.utils.data.BatchSampler(
        torch.utils.data.SequentialSampler(dataset), batch_size=BATCH, drop_last=False)
    return torch.utils.data.DataLoader(
        dataset, sampler=positions, batch_size=None, num_workers=4,
        collate_fn=torch.utils.data.default_collate)


def main(folder, epochs="1"):
    if not os.path.exists(SET):
        zqpaths.index(folder, SET)
    paths = zqpaths.open(SET)
    for epoch in range(int(epochs)):
        count, total = 0, torch.zeros(3, dtype=torch.float64)
        for images in batches_of(paths, epoch):
            count += len(images)
            total += images.mean(dim=(2, 3), dtype=torch.float64).sum(dim=0)
        red, green, blue = (total / max(count, 1)).tolist()
        print(f"epoch {epoch}: {count} images, mean colour {red:.3f} {green:.3f} {blue:.3f}")


if __name__ == "__main__":
    main(*sys.argv[1:])
