#include "tests/golden/TrieRows.hpp"

#include "tests/support/Peers.hpp"

namespace compressedpaths::golden {

TrieRows rowsOf(const BPathTree& tree) {
    struct Open {
        const BPathTree::BNode* node;
        std::size_t nextChild;
    };
    TrieRows rows;
    const auto root = BPathTreePeer::root(tree);
    std::vector<Open> open{{root.get(), 0}};
    while (!open.empty()) {
        Open& top = open.back();
        if (top.nextChild == top.node->children.size()) {
            open.pop_back();
            continue;
        }
        const BPathTree::BNode* child = top.node->children[top.nextChild++].get();
        rows.emplace_back(open.size(), hexOf(child->key));
        open.push_back({child, 0});
    }
    return rows;
}

TrieRows recordedRows(const Json& rows) {
    return listOf(rows, [](const Json& row) {
        if (!row.IsArray() || row.Size() != 2) throw UnreadableRecord("not a row of two");
        return std::pair<std::size_t, std::string>(integerOf(row[0]), textOf(row[1]));
    });
}

}  // namespace compressedpaths::golden
