#pragma once
// DiskStates goes through what a disk may have after each operation that was recorded:
//
//     DiskStates(disk, 1000).lookAtAll([&](const RecordedDisk::Content& content, bool hasReturned)
//     {
//         RecordedDisk::putContent(folder, content);
//         ...  // hasReturned: after the last operation, when whoever asked for it was told so
//     });
//
// Few ways to lose something are tried all; of many, those that lose all, nothing and one thing,
// and others at random, the same ones in each run.
//
// Threads: belongs to one thread.

#include <algorithm>
#include <cstddef>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <utility>

#include "tests/support/RecordedDisk.hpp"

class DiskStates {
public:
    using Content = RecordedDisk::Content;
    using Look = std::function<void(const Content& content, bool hasReturned)>;

    /// About `most` states in all, more of them where more is unsure.
    DiskStates(const RecordedDisk& disk, std::size_t most) : disk_(disk), most_(most) {}

    /// Returns how many there were, each counted once for an operation.
    std::size_t lookAtAll(const Look& look) {
        const std::size_t last = disk_.operationCount();
        std::size_t sum = 1;
        for (std::size_t done = 0; done <= last; ++done) sum += disk_.unsureCount(done);
        for (std::size_t done = 0; done <= last; ++done) {
            met_.clear();
            share_ = std::max<std::size_t>(most_ * disk_.unsureCount(done) / sum, 4);
            lookAfter(done, [&](const Content& content) { look(content, done == last); });
        }
        return count_;
    }

private:
    /// All ways to lose something, if they are not too many; else the two extremes, and others at
    /// random.
    void lookAfter(std::size_t done, const std::function<void(const Content&)>& look) {
        const std::size_t unsure = disk_.unsureCount(done);
        constexpr std::size_t kFew = 16;
        if (unsure < kFew && std::size_t{3} << unsure <= share_) {
            for (std::size_t choice = 0; choice < std::size_t{3} << unsure; ++choice)
                lookAt(done, choice, bitsOf(choice / 3), look);
            return;
        }
        for (std::size_t choice = 0; choice < share_; ++choice) {
            if (choice < 2)
                lookAt(
                    done, choice, [&] { return choice == 1; }, look);
            else if (choice % 3 == 0)
                lookAt(done, random_(), allButOneOf(unsure), look);
            else
                lookAt(done, random_(), manyOrFew(), look);
        }
    }

    static RecordedDisk::Choice bitsOf(std::size_t bits) {
        return [bits]() mutable { return (std::exchange(bits, bits / 2) & 1) != 0; };
    }

    RecordedDisk::Choice allButOneOf(std::size_t unsure) {
        return [left = random_() % unsure]() mutable { return left-- != 0; };
    }

    RecordedDisk::Choice manyOrFew() {
        return [this, odds = 1 + random_() % 7] { return random_() % 8 < odds; };
    }

    void lookAt(std::size_t done, std::size_t remains, const RecordedDisk::Choice& isKept,
                const std::function<void(const Content&)>& look) {
        Content content =
            disk_.stateAfter(done, isKept, static_cast<RecordedDisk::Remains>(remains % 3));
        if (met_.insert(hashOf(content)).second) {
            ++count_;
            look(content);
        }
    }

    static std::size_t hashOf(const Content& content) {
        std::string all;
        for (const auto& [name, bytes] : content)
            all.append(name).append(bytes ? ":" : "/").append(bytes.value_or("")).append("|");
        return std::hash<std::string>()(all);
    }

    const RecordedDisk& disk_;
    std::size_t most_;
    std::size_t share_ = 0;  // of those, after this operation
    std::size_t count_ = 0;
    std::set<std::size_t> met_;  // after this operation, by their hashes
    std::mt19937_64 random_;
};
