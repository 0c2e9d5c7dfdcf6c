#!/usr/bin/env python3
"""Reads a folder of images with four worker processes, by numpy and multiprocessing alone.

    examples/image_loader_numpy.py FOLDER [EPOCHS]

What image_loader.py does with torch. The paths are listed once, into images.zqp in the working
directory; remove it when images have come or gone.
"""

import multiprocessing
import os
import sys

import numpy
import PIL.Image

import zqpaths

SET = "images.zqp"
SIZE = 64
BATCH = 32


def read(path):
    """An image as numbers from 0 to 1, its colours last."""
    with PIL.Image.open(path) as image:
        pixels = numpy.asarray(image.convert("RGB").resize((SIZE, SIZE)), dtype=numpy.float32)
    return pixels / 255


def read_batch(task):
    """The images of one batch, in a worker: the share came by a few bytes, as the name of its file."""
    share, first = task
    return numpy.stack([read(path) for path in share[first:first + BATCH]])


def main(folder, epochs="1"):
    if not os.path.exists(SET):
        zqpaths.index(folder, SET)
    paths = zqpaths.open(SET)
    with multiprocessing.get_context("spawn").Pool(4) as workers:
        for epoch in range(int(epochs)):
            # A share of 1 reader is all paths, shuffled, without a list of them.
            share = paths.split(0, of=1, seed=42, epoch=epoch)
            tasks = ((share, first) for first in range(0, len(share), BATCH))
            count, total = 0, numpy.zeros(3)
            for images in workers.imap(read_batch, tasks):
                count += len(images)
                total += images.mean(axis=(1, 2), dtype=numpy.float64).sum(axis=0)
            red, green, blue = total / max(count, 1)
            print(f"epoch {epoch}: {count} images, mean colour {red:.3f} {green:.3f} {blue:.3f}")


if __name__ == "__main__":
    main(*sys.argv[1:])
