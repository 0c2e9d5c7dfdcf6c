"""Ways to hold millions of paths in Python, with one face: what is compared."""

import os

import numpy

import zqpaths


class OurSet:
    """A set of zqpaths, in a file."""

    name = "zqpaths"

    @staticmethod
    def make(paths, file):
        with zqpaths.Writer(file) as writer:
            writer.extend(paths)

    def __init__(self, file):
        self.paths = zqpaths.open(file)
        self.item = self.paths.__getitem__
        self.take = self.paths.take

    def all(self):
        return list(self.paths)

    def has(self, path):
        return path in self.paths

    def under(self, folder):
        return list(self.paths.under(folder))


class ListOfText:
    """What most programs have: a list of str, read from a text file."""

    name = "list of str"

    @staticmethod
    def make(paths, file):
        with open(file, "w", encoding="utf-8", errors="surrogateescape") as out:
            out.writelines(path + "\n" for path in paths)

    def __init__(self, file):
        with open(file, encoding="utf-8", errors="surrogateescape", newline="\n") as lines:
            self.paths = [line[:-1] for line in lines]
        self.item = self.paths.__getitem__

    def take(self, indices):
        paths = self.paths
        return [paths[i] for i in indices]

    def all(self):
        return list(self.paths)

    def under(self, folder):
        return [path for path in self.paths if path.startswith(folder + "/")]


class FixedTexts:
    """A numpy array of fixed strings, mapped: each takes as many bytes as the longest."""

    name = "numpy S"

    @staticmethod
    def make(paths, file):
        with open(file, "wb") as out:
            numpy.save(out, numpy.array([os.fsencode(path) for path in paths]))

    def __init__(self, file):
        self.paths = numpy.load(file, mmap_mode="r")

    def item(self, index):
        return self.paths[index].decode()

    def take(self, indices):
        return self.paths[indices].tolist()  # bytes: decoding them takes as long again

    def all(self):
        return self.paths.tolist()


class Trie:
    """A trie of libmarisa, mapped: it has no order of its own, and each path once."""

    name = "marisa"

    @staticmethod
    def make(paths, file):
        import marisa

        keys = marisa.Keyset()
        for path in paths:
            keys.push_back(path)
        trie = marisa.Trie()
        trie.build(keys)
        trie.save(file)

    def __init__(self, file):
        import marisa

        self.trie = marisa.Trie()
        self.trie.mmap(file)
        self.agent = marisa.Agent()
        self.count = self.trie.num_keys()

    def item(self, index):
        self.agent.set_query(index % self.count)
        self.trie.reverse_lookup(self.agent)
        return self.agent.key_str()

    def take(self, indices):
        return [self.item(int(i)) for i in indices]

    def all(self):
        return self.under("")

    def has(self, path):
        self.agent.set_query(path)
        return self.trie.lookup(self.agent)

    def under(self, folder):
        found = []
        self.agent.set_query(folder + "/" if folder else "")
        while self.trie.predictive_search(self.agent):
            found.append(self.agent.key_str())
        return found


HOLDERS = {holder.name: holder for holder in (OurSet, ListOfText, FixedTexts, Trie)}
