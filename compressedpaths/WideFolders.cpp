#include "compressedpaths/WideFolders.hpp"

#include <bit>
#include <string_view>

namespace compressedpaths {
namespace {

std::size_t hashOf(const Bytes& key) {
    const auto* const characters = reinterpret_cast<const char*>(key.data());
    return std::hash<std::string_view>()(std::string_view(characters, key.size()));
}

}  // namespace

std::size_t WideFolders::find(const BPathTree::BNode& folder, const Bytes& key) {
    Table& table = tables_[&folder];
    table.takeIn(folder.children);
    const std::uint32_t slot = table.slots[table.slotOf(folder.children, key)];
    return slot == 0 ? kNone : slot - 1;
}

/// The slot of the child with this key, or the free one where it belongs.
std::size_t WideFolders::Table::slotOf(const Children& children, const Bytes& key) const {
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = hashOf(key) & mask;
    while (slots[slot] != 0 && children[slots[slot] - 1]->key != key) slot = (slot + 1) & mask;
    return slot;
}

void WideFolders::Table::takeIn(const Children& children) {
    if (children.size() * 2 > slots.size()) {
        slots.assign(std::bit_ceil(children.size() * 2 + 1), 0);
        childCount = 0;
    }
    for (; childCount < children.size(); ++childCount) {
        const std::size_t slot = slotOf(children, children[childCount]->key);
        if (slots[slot] == 0) slots[slot] = static_cast<std::uint32_t>(childCount + 1);
    }
}

}  // namespace compressedpaths
