#include "python/src/OpenedPathSet.hpp"

#include <cstdint>
#include <filesystem>
#include <random>
#include <vector>

#include "python/src/Errors.hpp"
#include "python/src/Interruption.hpp"
#include "python/src/Places.hpp"
#include "python/src/Selection.hpp"
#include "python/src/Slots.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/choosing/Permutation.hpp"

namespace zqpaths::python {
namespace {

PathType typeOf(bool isBytes) noexcept {
    return isBytes ? PathType::kBytes : PathType::kText;
}

/// What pickle keeps: the name of the file, and what it was.
py::tuple reduced(const OpenedPathSet& set) {
    return py::make_tuple(
        py::module_::import("zqpaths._pickling").attr("reopened"),
        py::make_tuple(py::bytes(set.set().file()), set.type() == PathType::kBytes,
                       set.set().fingerprint(), set.isPartial()));
}

py::object fileOf(const OpenedPathSet& set) {
    return pathObject(set.set().file(), PathType::kText);
}

/// The name that stays right wherever the process goes; there is no file of an empty one.
std::string absoluteName(std::string_view file) {
    return file.empty() ? std::string() : std::filesystem::absolute(file).string();
}

py::list files(const OpenedPathSet& set) {
    py::list names;
    for (std::size_t place = 0; place < set.set().fileCount(); ++place)
        names.append(pathObject(set.set().fileName(place), PathType::kText));
    return names;
}

py::list missing(const OpenedPathSet& set) {
    const py::object range = py::module_::import("builtins").attr("range");
    py::list all;
    for (const zqpaths::PathSet::Missing& part : set.set().missing())
        all.append(
            py::make_tuple(range(part.firstNumber - 1, part.lastNumber), words(part.reason)));
    return all;
}

std::string described(const OpenedPathSet& set) {
    return "<zqpaths.PathSet of " + std::to_string(set.size()) + " paths in " +
           std::string(py::repr(fileOf(set))) + ">";
}

// --- Choosing paths.

/// The positions that `search(interruption, positions)` finds without the interpreter's lock.
template <class Search>
ListedPaths found(Search search) {
    std::vector<std::int64_t> positions;
    const py::gil_scoped_release unlocked;
    Interruption interruption;
    search(interruption, positions);
    positions.shrink_to_fit();
    return ListedPaths(std::move(positions));
}

Pattern patternOf(py::handle text, py::handle glob, py::handle regex, bool ignoreCase) {
    if (int{!text.is_none()} + int{!glob.is_none()} + int{!regex.is_none()} != 1)
        throw py::type_error("find takes one of text, glob and regex");
    const auto letterCase = ignoreCase ? Pattern::Case::kIgnore : Pattern::Case::kRespect;
    if (!glob.is_none()) return Pattern::glob(GivenPath(glob).text(), letterCase);
    if (!regex.is_none()) return Pattern::regex(GivenPath(regex).text(), letterCase);
    return Pattern::text(GivenPath(text).text(), letterCase);
}

Selection find(const py::object& self, py::handle text, py::handle glob, py::handle regex,
               bool ignoreCase) {
    const auto& set = self.cast<const OpenedPathSet&>();
    const Pattern pattern = patternOf(text, glob, regex, ignoreCase);
    return {self, set, found([&](Interruption& interruption, std::vector<std::int64_t>& positions) {
                set.set().findNumbers(pattern, [&](std::uint64_t first, std::uint64_t last) {
                    interruption.step();
                    for (std::uint64_t number = first; number <= last; ++number)
                        positions.push_back(static_cast<std::int64_t>(number - 1));
                    return true;
                });
            })};
}

Selection under(const py::object& self, py::handle folder) {
    const auto& set = self.cast<const OpenedPathSet&>();
    const GivenPath given(folder);
    return {self, set, found([&](Interruption& interruption, std::vector<std::int64_t>& positions) {
                set.set().under(given.text(), [&](std::uint64_t number, std::string_view /*path*/) {
                    interruption.step();
                    positions.push_back(static_cast<std::int64_t>(number - 1));
                });
            })};
}

Selection gone(const py::object& self) {
    const auto& set = self.cast<const OpenedPathSet&>();
    return {self, set, found([&](Interruption& interruption, std::vector<std::int64_t>& positions) {
                for (std::uint64_t place = 0; place < set.set().goneCount(); ++place) {
                    interruption.step();
                    positions.push_back(static_cast<std::int64_t>(set.set().goneNumber(place) - 1));
                }
            })};
}

Selection split(const py::object& self, py::handle rank, py::handle of, py::handle epoch,
                py::handle seed) {
    const auto& set = self.cast<const OpenedPathSet&>();
    const Reader reader{naturalNumber(rank, "rank"), naturalNumber(of, "of")};
    if (!seed.is_none()) {
        const std::uint64_t number = epoch.is_none() ? 0 : naturalNumber(epoch, "epoch");
        return {self, set, ShuffledPaths(set.size(), reader, naturalNumber(seed, "seed"), number)};
    }
    if (!epoch.is_none()) throw py::type_error("an epoch is one of a shuffle, which takes a seed");
    return {self, set, DealtPaths(set.size(), reader)};
}

std::uint64_t drawnSeed() {
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

py::list sample(const OpenedPathSet& set, py::handle count, py::handle seed) {
    const Permutation order(set.size(), seed.is_none() ? drawnSeed() : naturalNumber(seed, "seed"));
    return set.list(std::min(naturalNumber(count, "n"), order.size()),
                    [&](std::uint64_t i) { return order[i]; });
}

py::list verify(const OpenedPathSet& set) {
    std::vector<Error> damages;
    {
        const py::gil_scoped_release unlocked;
        damages = set.set().verify();
    }
    py::list texts;
    for (const Error& damage : damages) texts.append(words(damage));
    return texts;
}

}  // namespace

OpenedPathSet openedSet(py::handle file, PathType type, bool isPartial) {
    const GivenPath name(file);
    return naming(py::reinterpret_borrow<py::object>(file), [&] {
        const std::string absolute = absoluteName(name.text());
        const py::gil_scoped_release unlocked;
        const auto open = isPartial ? zqpaths::PathSet::openPartial : zqpaths::PathSet::open;
        return OpenedPathSet(open(absolute), type, isPartial);
    });
}

namespace {

constexpr const char* kSetDoc =
    R"(All paths of a set in a file, in the order in which they were added. zqpaths.open gives one.

>>> s
<zqpaths.PathSet of 3 paths in '...data.zqp'>

What others do to the file later is not seen: they may append to it or replace it. One that is cut
short raises Error from the next call on; if that happens in the midst of a call, the system may end the
process (SIGBUS). One whose bytes are overwritten raises Error where they cannot be what was saved;
verify looks at all of them.

A set can be pickled, as the name of its file: the process that gets it opens the file again, and
raises Error if that has changed. So a worker process that is spawned has the same set, and one that
is forked shares it; fork while no other thread is in the midst of a call, as with all that has locks.)";

constexpr const char* kFingerprintDoc =
    R"(An int that tells this set from other states of its file, and from other sets.

Readers in several processes that compare it know that a position means the same path to all of them.
A copy of the file has the same.)";

constexpr const char* kFilesDoc =
    R"(The absolute names of the set files, in the order of their positions: a list of str.

One, the file itself, unless that is a set of sets, as merge makes them.)";

constexpr const char* kMissingDoc =
    R"(What cannot be read of a set of sets that was opened with partial=True: a list.

In it is, for neighbours, a pair of their positions, a range, and of the reason, a str that names the
file. Empty for all other sets.

>>> s.missing
[])";

constexpr const char* kGoneDoc =
    R"(The paths that were marked as gone, since what they led to is there no more: a Selection.

They keep their positions, and the set gives them as it gives the others: what is to be read is at
the positions that are not in set(s.gone.positions).)";

constexpr const char* kFindDoc =
    R"(find(self, text=None, *, glob=None, regex=None, ignore_case=False)
--

The paths that hold a text, or match a glob or a regular expression: a Selection, in the order of
the set.

A text may be anywhere in the path. A glob without a separator is matched against the file name
alone, one with a separator against the whole path: * is any text and ? one character, neither with
a /; ** is any text with /. A regular expression, as RE2 understands it, may be anywhere in the path.

>>> list(s.find("b/"))
['/data/b/c.txt']
>>> list(s.find(glob="[ab].txt"))
['/data/a.txt', '/data/b.txt']
>>> s.find(regex="C[.]t?xt$", ignore_case=True).positions
array([2])

Raises UseError, a ValueError, for a glob or an expression that is not well formed.)";

constexpr const char* kUnderDoc = R"(under(self, folder)
--

The paths in a folder and below it, and that of the folder itself: a Selection, in the order of the
set. How many separators stand together, or at the end, does not matter. Found by the folders of the
set, not by going through its paths.

>>> list(s.under("/data/b"))
['/data/b/c.txt'])";

constexpr const char* kSampleDoc = R"(sample(self, n, *, seed=None)
--

A list of n paths chosen at random, each position at most once; all paths if there are fewer.

The same seed, from 0 to 2**64 - 1, gives the same paths on every machine, and those that the program
prints: zqpaths sample data.zqp -n 2 --seed 1. Without one, a seed is drawn.

>>> s.sample(2, seed=1) == s.sample(3, seed=1)[:2]
True)";

constexpr const char* kSplitDoc = R"(split(self, rank, of, *, epoch=None, seed=None)
--

The share of one of several readers, of rank 0 to of - 1: a Selection. Shares differ by one path at
most, and each position is in one of them.

Without a seed the paths are dealt like cards, in their order:

>>> list(s.split(0, 2))
['/data/a.txt', '/data/b/c.txt']

With a seed, from 0 to 2**64 - 1, they are shuffled first, otherwise in every epoch; the order depends
on seed, epoch (0 if it is not given) and the number of paths alone, and is the same on every machine
and in every release. Each reader knows its share without asking the others, and without memory for
it: positions are computed.

>>> shares = [s.split(rank, 2, seed=7, epoch=3) for rank in range(2)]
>>> sorted(path for share in shares for path in share) == sorted(s)
True)";

constexpr const char* kVerifyDoc = R"(verify(self)
--

Everything that is damaged, as a list of texts; empty if the set is whole. Reads the whole file.

>>> s.verify()
[])";

constexpr const char* kOpenDoc = R"(open(file, *, as_bytes=False, partial=False)
--

Opens the set in a file: a PathSet. Takes microseconds, however many paths there are.

Paths are str, or bytes with as_bytes=True. Raises NotFoundError, a FileNotFoundError, if there is no
such file, other OSErrors for what the system refuses, and Error for a file that is no set, or damaged.

>>> zqpaths.open("data.zqp", as_bytes=True)[0]
b'/data/a.txt'

Of a set of sets, as merge makes them, the files are opened when they are first needed. One that is
missing, or was changed since, raises NotFoundError, or Error of the kind "damaged", from the call that
needs it. With partial=True what is there can be read, and missing tells of the rest: paths keep their
positions; find and under give those that are there, under("") all of them; a position of one that is
missing raises the error.)";

}  // namespace

void bindPathSet(py::module_& module) {
    py::class_<OpenedPathSet, PathSequence> set(module, "PathSet",
                                                py::custom_type_setup(refuseMaking), kSetDoc);
    set.attr("__module__") = "zqpaths";
    set.def_property_readonly("file", &fileOf, "The absolute name of the file, a str.");
    set.def_property_readonly(
        "fingerprint", [](const OpenedPathSet& self) { return self.set().fingerprint(); },
        kFingerprintDoc);
    set.def_property_readonly("files", &files, kFilesDoc);
    set.def_property_readonly("missing", &missing, kMissingDoc);
    set.def_property_readonly("gone", &gone, kGoneDoc);
    set.def("find", &find, kFindDoc, py::arg("text") = py::none(), py::kw_only(),
            py::arg("glob") = py::none(), py::arg("regex") = py::none(),
            py::arg("ignore_case") = false);
    set.def("under", &under, kUnderDoc, py::arg("folder"));
    set.def("sample", &sample, kSampleDoc, py::arg("n"), py::kw_only(),
            py::arg("seed") = py::none());
    set.def("split", &split, kSplitDoc, py::arg("rank"), py::arg("of"), py::kw_only(),
            py::arg("epoch") = py::none(), py::arg("seed") = py::none());
    set.def("verify", &verify, kVerifyDoc);
    set.def("__repr__", &described);
    set.def("__reduce__", &reduced);
    module.def(
        "open",
        [](py::handle file, bool isBytes, bool isPartial) {
            return openedSet(file, typeOf(isBytes), isPartial);
        },
        kOpenDoc, py::arg("file"), py::kw_only(), py::arg("as_bytes") = false,
        py::arg("partial") = false);
}

}  // namespace zqpaths::python
