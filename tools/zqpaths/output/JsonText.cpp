#include "tools/zqpaths/output/JsonText.hpp"

#include <string>

#include "tools/zqpaths/output/Base64.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths::program {

void putText(JsonWriter& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void putReadable(JsonWriter& writer, std::string_view name) {
    if (isUtf8(name)) {
        putText(writer, name);
    } else {
        std::string readable;
        appendReadable(name, readable);
        putText(writer, readable);
    }
}

void putName(JsonWriter& writer, std::string_view key, std::string_view bytesKey,
             std::string_view name) {
    putText(writer, key);
    putReadable(writer, name);
    if (isUtf8(name)) return;
    putText(writer, bytesKey);
    putText(writer, toBase64(name));
}

}  // namespace zqpaths::program
