#include "tests/golden/Throwing.hpp"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <ostream>
#include <typeinfo>

namespace compressedpaths::golden {

std::ostream& operator<<(std::ostream& out, const Thrown& thrown) {
    return out << thrown.type << " \"" << thrown.what << '"';
}

Thrown describe(const std::exception& exception) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(exception).name(), nullptr, nullptr, &status), &std::free);
    const std::string full = status == 0 ? name.get() : typeid(exception).name();
    const std::size_t lastColon = full.rfind(':');
    return {lastColon == std::string::npos ? full : full.substr(lastColon + 1), exception.what()};
}

std::optional<Thrown> recordedThrow(Fields& fields) {
    const Json* value = fields.find("throws");
    if (value == nullptr) return std::nullopt;

    Fields thrown(*value);
    const Thrown recorded{textOf(thrown["type"]), textOf(thrown["what"])};
    thrown.requireAllRead();
    return recorded;
}

}  // namespace compressedpaths::golden
