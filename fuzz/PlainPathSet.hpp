#pragma once
// PlainPathSet is a path set without any compression, written as simply as the described behaviour
// allows: what the library does is compared with it. Names are plain texts.
//
// It knows where it cannot say what the library should give: `fetch` then returns nothing.

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fuzzing {

using PlainPath = std::vector<std::u16string>;

struct PlainNode {
    std::u16string name;
    bool isFile = false;  // it came into the trie as the end of a path
    std::vector<std::shared_ptr<PlainNode>> children;
};

/// Shared by copies of a set, as the library's trie is.
struct PlainTrie {
    PlainNode root;
    // What of the past the saved form does not hold, so that loading may take one file for another.
    bool fileHasBecomeFolder = false;
    bool hasUntrackedFolderBelowFile = false;  // no entry's track ends there
    bool holdsForeignPaths = false;            // of copies, or added on their own

    PlainNode& append(PlainNode& parent, const std::u16string& name, bool isFile) {
        fileHasBecomeFolder = fileHasBecomeFolder || parent.isFile;
        parent.children.push_back(std::make_shared<PlainNode>(PlainNode{name, isFile, {}}));
        return *parent.children.back();
    }

    static PlainNode* find(PlainNode& parent, const std::u16string& name) {
        for (const auto& child : parent.children)
            if (child->name == name) return child.get();
        return nullptr;
    }
};

class PlainPathSet {
public:
    void addEntry(const PlainPath& folder, const PlainPath& files) {
        PlainNode* node = &trie_->root;
        for (std::size_t level = 0; level < folder.size(); ++level) {
            PlainNode* const next = PlainTrie::find(*node, folder[level]);
            if (next == nullptr && node->isFile && level + 1 < folder.size())
                trie_->hasUntrackedFolderBelowFile = true;
            node = next != nullptr ? next : &trie_->append(*node, folder[level], false);
        }
        for (const std::u16string& name : files) trie_->append(*node, name, true);
        hasSinglesBeforeEntries_ =
            hasSinglesBeforeEntries_ || pathCount_ != (ends_.empty() ? 0 : ends_.back());
        pathCount_ += files.size();
        ends_.push_back(pathCount_);
        entries_.push_back({folder, files});
    }

    void addSingle(const PlainPath& path) {
        trie_->holdsForeignPaths = true;
        ++pathCount_;
        PlainNode* node = &trie_->root;
        bool existed = true;
        for (std::size_t level = 0; level < path.size(); ++level) {
            PlainNode* const next = PlainTrie::find(*node, path[level]);
            existed = next != nullptr;
            node = existed ? next : &trie_->append(*node, path[level], level + 1 == path.size());
        }
        if (existed) duplicates_[pathCount_] = path;
    }

    std::size_t pathCount() const { return pathCount_; }

    /// The path with a number, if it is clear what it should be.
    std::optional<PlainPath> fetch(std::size_t number) const {
        const auto end = std::lower_bound(ends_.begin(), ends_.end(), number);
        if (end == ends_.end() || !knowsWhereFilesBegin_) return std::nullopt;
        const auto& entry = entries_[static_cast<std::size_t>(end - ends_.begin())];
        const std::size_t start = end == ends_.begin() ? 0 : *(end - 1);
        if (number - start > entry.files.size()) return std::nullopt;
        // Such an entry has no track to say where in the root its files begin.
        if (entry.folder.empty() && trie_->holdsForeignPaths) return std::nullopt;
        PlainPath path = entry.folder;
        path.push_back(entry.files[number - start - 1]);
        return path;
    }

    /// All paths in the order in which a walk gives them.
    std::vector<PlainPath> walk() const {
        std::vector<PlainPath> leaves;
        PlainPath above;
        appendLeaves(trie_->root, above, leaves);
        std::vector<PlainPath> all;
        auto leaf = leaves.begin();
        while (true) {
            const auto duplicate = duplicates_.find(all.size() + 1);
            if (duplicate != duplicates_.end())
                all.push_back(duplicate->second);
            else if (leaf != leaves.end())
                all.push_back(*leaf++);
            else
                return all;
        }
    }

    /// A copy that shares the trie.
    PlainPathSet copy() const {
        trie_->holdsForeignPaths = true;
        return *this;
    }

    /// What a set becomes that is saved and loaded.
    PlainPathSet loaded() const {
        PlainPathSet set = *this;
        set.trie_ = std::make_shared<PlainTrie>(*trie_);
        separate(set.trie_->root);
        const bool isAmbiguous = trie_->hasUntrackedFolderBelowFile || hasSinglesBeforeEntries_ ||
                                 (trie_->fileHasBecomeFolder && trie_->holdsForeignPaths);
        set.knowsWhereFilesBegin_ = knowsWhereFilesBegin_ && !isAmbiguous;
        std::vector<PlainPath> leaves;
        PlainPath above;
        appendLeaves(trie_->root, above, leaves);
        set.pathCount_ = (ends_.empty() ? leaves.size() : ends_.back()) + duplicates_.size();
        return set;
    }

private:
    struct Entry {
        PlainPath folder;
        PlainPath files;
    };

    static void appendLeaves(const PlainNode& node, PlainPath& above,
                             std::vector<PlainPath>& leaves) {
        for (const auto& child : node.children) {
            above.push_back(child->name);
            if (child->children.empty()) leaves.push_back(above);
            appendLeaves(*child, above, leaves);
            above.pop_back();
        }
    }

    static void separate(PlainNode& node) {
        for (auto& child : node.children) {
            child = std::make_shared<PlainNode>(*child);
            separate(*child);
        }
    }

    std::shared_ptr<PlainTrie> trie_ = std::make_shared<PlainTrie>();
    std::vector<Entry> entries_;
    std::vector<std::size_t> ends_;  // of the entries' path numbers
    std::map<std::size_t, PlainPath> duplicates_;
    std::size_t pathCount_ = 0;
    bool hasSinglesBeforeEntries_ = false;
    bool knowsWhereFilesBegin_ = true;
};

}  // namespace fuzzing
