// Objects of JSON, one a line.

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tools/zqpaths/sources/listings/LineReaders.hpp"

namespace zqpaths::program {
namespace {

using Allocator = rapidjson::MemoryPoolAllocator<>;
using Value = rapidjson::GenericValue<rapidjson::UTF8<>, Allocator>;
using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, Allocator>;

constexpr std::size_t kPoolSize = std::size_t{1} << 16;

/// The member that `field` leads to; null if there is none.
const Value* memberOf(const Value& object, std::string_view field) {
    if (!object.IsObject()) return nullptr;
    const auto find = [&object](std::string_view name) -> const Value* {
        const rapidjson::Value key(
            rapidjson::StringRef(name.data(), static_cast<rapidjson::SizeType>(name.size())));
        const auto member = object.FindMember(key);
        return member == object.MemberEnd() ? nullptr : &member->value;
    };
    if (const Value* const whole = find(field)) return whole;
    // Any of the dots may be part of a name.
    for (std::size_t dot = field.find('.'); dot != std::string_view::npos;
         dot = field.find('.', dot + 1)) {
        const Value* const outer = find(field.substr(0, dot));
        const Value* const inner = outer ? memberOf(*outer, field.substr(dot + 1)) : nullptr;
        if (inner != nullptr) return inner;
    }
    return nullptr;
}

class JsonLinesReader {
public:
    explicit JsonLinesReader(std::string field)
        : field_(std::move(field)), pool_(std::make_shared<Pool>()) {}

    std::optional<std::string_view> operator()(std::string_view line) {
        if (line.find_first_not_of(" \t\r") == std::string_view::npos) return std::nullopt;
        // One would end the text for the parser.
        if (line.find('\0') != std::string_view::npos)
            throw UnexpectedLine{"an object of JSON, which has no NUL"};
        line_ = line;
        Allocator allocator(pool_->data(), pool_->size());
        Document document(&allocator);
        // Without calls inside calls, so that no depth is too deep.
        document.ParseInsitu<rapidjson::kParseIterativeFlag>(line_.data());
        if (document.HasParseError())
            throw UnexpectedLine{"an object of JSON: " + std::string(rapidjson::GetParseError_En(
                                                             document.GetParseError()))};
        const Value* const member = memberOf(document, field_);
        if (member == nullptr || !member->IsString())
            throw UnexpectedLine{"an object with the member \"" + field_ + "\", a text"};
        // The text stands in `line_`, whose bytes were changed in place.
        return std::string_view(member->GetString(), member->GetStringLength());
    }

private:
    using Pool = std::array<char, kPoolSize>;

    std::string field_;
    std::string line_;
    std::shared_ptr<Pool> pool_;
};

}  // namespace

LineReader jsonLinesReader(const std::string& field) {
    return JsonLinesReader(field);
}

}  // namespace zqpaths::program
