"""Measures sets in Python beside what else a program would use:  python3 bench/python LIST [PART...]

LIST is a text file of paths, one a line. Parts are writing, speed, memory, loaders and cluster;
without one, all. Times are the least of several runs. scripts/bench-python builds the package and the
program first.
"""

import collections
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import holders

HERE = pathlib.Path(__file__).resolve().parent
PROGRAM = "build/release/bin/zqpaths"


def run(script, *arguments):
    """The figures that a script prints, in a process of its own."""
    command = [sys.executable, "-W", "ignore", str(HERE / script), *map(str, arguments)]
    return json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout)


def show(title, rows):
    """Figures by name of holder, as a table."""
    columns = list(dict.fromkeys(column for figures in rows.values() for column in figures))
    print(f"\n{title}\n{'':18}" + "".join(f"{column:>15}" for column in columns))
    for name, figures in rows.items():
        cells = [f"{figures[c]:15.3f}" if c in figures else f"{'':15}" for c in columns]
        print(f"{name:18}" + "".join(cells))


def make_files(paths, folder, names):
    """The file of each holder; how long that took, and how large it is."""
    files, rows = {}, {}
    for name in names:
        holder = holders.HOLDERS[name]
        files[name] = os.path.join(folder, name.replace(" ", "-"))
        begin = time.perf_counter()
        holder.make(paths, files[name])
        seconds = time.perf_counter() - begin
        rows[name] = {"made M/s": len(paths) / 1e6 / seconds,
                      "file MB": os.path.getsize(files[name]) / 1e6}
    show("making the file", rows)
    return files


def extending(paths, folder):
    """How fast paths are taken, apart from the commit."""
    rows = {}
    for kind, given in [("list", lambda: paths), ("generator", lambda: (path for path in paths))]:
        best = float("inf")
        for _ in range(3):
            writer = holders.zqpaths.Writer(os.path.join(folder, "extended"))
            begin = time.perf_counter()
            writer.extend(given())
            best = min(best, time.perf_counter() - begin)
            writer.discard()
        rows[kind] = {"M/s": len(paths) / 1e6 / best}
    show("Writer.extend", rows)


def busiest_folder(paths):
    """The folder two levels down with the most paths, for under."""
    counts = collections.Counter("/".join(path.split("/")[:2]) for path in paths)
    return counts.most_common(1)[0][0]


def of_workers(script, names, files, count):
    file_size = os.path.getsize(files["zqpaths"]) / 1e6
    rows = {}
    for name in names:
        for method in ("fork", "spawn"):
            figures = run(script, name, files[name], count, method)
            figures["of our file"] = figures["MB"] / file_size
            rows[f"{name}, {method}"] = figures
    return rows


def main(list_file, *parts):
    parts = parts or ("writing", "speed", "memory", "loaders", "cluster")
    compared = {"speed", "memory", "loaders"}.intersection(parts)
    with open(list_file, encoding="utf-8", errors="surrogateescape") as lines:
        paths = lines.read().split("\n")[:-1]
    count, folder = len(paths), busiest_folder(paths)
    with tempfile.TemporaryDirectory() as place:
        files = make_files(paths, place, holders.HOLDERS if compared else ["zqpaths"])
        if "writing" in parts:
            extending(paths, place)
        del paths
        if "speed" in parts:
            show(f"{count} paths; times a path; under {folder}; memory once random paths were read",
                 {name: run("speed.py", name, files[name], count, folder) for name in files})
        if "memory" in parts:
            show("memory of eight workers that read random paths, in all",
                 of_workers("memory.py", list(files), files, count))
        if "loaders" in parts:
            rows = of_workers("loaders.py", ["zqpaths", "list of str"], files, count)
            assert len({figures.pop("sum") for figures in rows.values()}) == 1, "answers differ"
            show("DataLoader of torch with eight workers, all paths in batches of 1,000", rows)
            print("all loaders gave the same paths")
        if "cluster" in parts:
            counted = run("cluster.py", files["zqpaths"], 4, HERE.parents[1] / PROGRAM)
            show(f"{counted['extensions']} extensions of {count} paths by Dask", counted["rows"])
            print("the counts are equal")


if __name__ == "__main__":
    main(*sys.argv[1:])
