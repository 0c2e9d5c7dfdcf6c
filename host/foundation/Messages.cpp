#include "host/foundation/Messages.hpp"

#include <charconv>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <utility>

#include "host/foundation/HostTexts.hpp"

namespace foundation::core::messages {
namespace {

class Catalogue {
public:
    Catalogue() {
        for (const HostText& host : hostTexts()) set(host.component, host.key, host.text);
    }

    void set(std::string_view component, std::string_view key, std::string_view text) {
        const std::unique_lock lock(mutex_);
        texts_[{std::string(component), std::string(key)}] = text;
    }

    std::optional<std::string> find(std::string_view component, std::string_view key) const {
        const std::shared_lock lock(mutex_);
        const auto found = texts_.find({std::string(component), std::string(key)});
        if (found == texts_.end()) return std::nullopt;
        return found->second;
    }

private:
    mutable std::shared_mutex mutex_;
    std::map<std::pair<std::string, std::string>, std::string> texts_;
};

/// Never destroyed, since errors are also made while a program ends.
Catalogue& catalogue() {
    static Catalogue& theOne = *new Catalogue;
    return theOne;
}

/// The end of the hole that starts `text`, past its '}', and its number; an end of 0 if there is
/// no hole.
struct Hole {
    std::size_t end = 0;
    std::size_t number = 0;
};
Hole holeAtStart(std::string_view text) {
    Hole hole;
    const char* const last = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data() + 1, last, hole.number);
    if (error == std::errc() && rest != last && *rest == '}')
        hole.end = static_cast<std::size_t>(rest + 1 - text.data());
    return hole;
}

std::string fill(std::string_view text, const std::vector<std::string>& arguments) {
    std::string filled;
    while (!text.empty()) {
        const std::size_t before = std::min(text.find('{'), text.size());
        filled += text.substr(0, before);
        text.remove_prefix(before);
        if (text.empty()) break;
        const Hole hole = holeAtStart(text);
        if (hole.end != 0 && hole.number >= 1 && hole.number <= arguments.size()) {
            filled += arguments[hole.number - 1];
            text.remove_prefix(hole.end);
        } else {
            filled += '{';
            text.remove_prefix(1);
        }
    }
    return filled;
}

std::string withoutText(std::string_view component, std::string_view key,
                        const std::vector<std::string>& arguments) {
    std::string listed(component);
    listed.append(":").append(key);
    const char* separator = ": ";
    for (const std::string& argument : arguments) {
        listed.append(separator).append(argument);
        separator = ", ";
    }
    return listed;
}

}  // namespace

void add(std::string_view component, std::string_view key, std::string_view text) {
    catalogue().set(component, key, text);
}

std::string format(std::string_view component, std::string_view key,
                   const std::vector<std::string>& arguments) {
    const std::optional<std::string> text = catalogue().find(component, key);
    return text ? fill(*text, arguments) : withoutText(component, key, arguments);
}

}  // namespace foundation::core::messages
