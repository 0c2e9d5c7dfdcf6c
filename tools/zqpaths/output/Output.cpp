#include "tools/zqpaths/output/Output.hpp"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/Base64.hpp"
#include "tools/zqpaths/output/JsonText.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kBufferedBytes = std::size_t{1} << 18;

/// One JSON object, field by field.
class JsonObject {
public:
    JsonObject() : writer_(text_) { writer_.StartObject(); }

    void add(std::string_view key, std::uint64_t value) {
        putText(writer_, key);
        writer_.Uint64(value);
    }

    void add(std::string_view key, std::string_view value) {
        putText(writer_, key);
        putText(writer_, value);
    }

    void addName(std::string_view key, std::string_view bytesKey, std::string_view name) {
        putName(writer_, key, bytesKey, name);
    }

    /// Names, and under `bytesKey` the bytes of those that are not UTF-8, if there are any.
    void addNames(std::string_view key, std::string_view bytesKey,
                  std::span<const std::string> names) {
        putText(writer_, key);
        writer_.StartArray();
        for (const std::string& name : names) putReadable(writer_, name);
        writer_.EndArray();
        if (std::ranges::all_of(names, isUtf8)) return;

        putText(writer_, bytesKey);
        writer_.StartArray();
        for (const std::string& name : names) {
            if (isUtf8(name)) {
                writer_.Null();
            } else {
                putText(writer_, toBase64(name));
            }
        }
        writer_.EndArray();
    }

    std::string_view finish() {
        writer_.EndObject();
        return {text_.GetString(), text_.GetSize()};
    }

private:
    rapidjson::StringBuffer text_;
    JsonWriter writer_;
};

void addPath(JsonObject& object, std::string_view path) {
    object.addName("path", "bytes", path);
}

JsonObject& addNumberedPath(JsonObject& object, std::uint64_t number, std::string_view path) {
    object.add("number", number);
    addPath(object, path);
    return object;
}

/// Waits until a descriptor that must not block can be written to.
void awaitWritable(int descriptor) {
    pollfd waiting{descriptor, POLLOUT, 0};
    poll(&waiting, 1, -1);
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            awaitWritable(descriptor);
        } else if (errno == EPIPE) {
            throw ClosedPipe();
        } else if (errno != EINTR) {
            throw systemFailureAt("standard output", errno);
        }
    }
}

}  // namespace

Output::Output(const OutputOptions& options) : options_(options) {}

void Output::path(std::uint64_t number, std::string_view path) {
    if (options_.json) {
        JsonObject object;
        append(addNumberedPath(object, number, path).finish());
    } else {
        append(path);
    }
    end();
}

void Output::numberedPath(std::uint64_t number, std::string_view path) {
    if (!options_.json) {
        append(std::to_string(number));
        append("\t");
    }
    this->path(number, path);
}

void Output::path(std::string_view path) {
    if (options_.json) {
        JsonObject object;
        addPath(object, path);
        append(object.finish());
    } else {
        append(path);
    }
    end();
}

void Output::pathIn(Side side, std::optional<std::uint64_t> number, std::string_view path) {
    const bool isFirst = side == Side::kFirst;
    if (options_.json) {
        JsonObject object;
        object.add("in", std::string_view(isFirst ? "first" : "second"));
        if (number) object.add("number", *number);
        addPath(object, path);
        append(object.finish());
    } else {
        append(isFirst ? "< " : "> ");
        append(path);
    }
    end();
}

void Output::changed(PathChange change, std::uint64_t number, std::string_view path) {
    const bool isGone = change == PathChange::kGone;
    if (options_.json) {
        JsonObject object;
        object.add("change", std::string_view(isGone                         ? "gone"
                                              : change == PathChange::kAdded ? "added"
                                                                             : "back"));
        append(addNumberedPath(object, number, path).finish());
    } else {
        append(isGone ? "- " : "+ ");
        append(path);
    }
    end();
}

void Output::number(std::uint64_t number, std::string_view path) {
    if (options_.json) {
        this->path(number, path);
    } else {
        append(std::to_string(number));
        end();
    }
}

void Output::count(std::uint64_t count) {
    if (options_.json) {
        JsonObject object;
        object.add("count", count);
        append(object.finish());
    } else {
        append(std::to_string(count));
    }
    endWith('\n');
}

void Output::group(std::string_view folder, std::span<const std::string> fileNames) {
    if (options_.json) {
        JsonObject object;
        object.addName("folder", "folderBytes", folder);
        object.addNames("files", "fileBytes", fileNames);
        append(object.finish());
        end();
        return;
    }
    append(folder);
    end();
    for (const std::string& name : fileNames) {
        append("\t");
        append(name);
        end();
    }
}

void Output::text(std::string_view text) {
    append(text);
}

void Output::line(std::string_view text) {
    append(text);
    endWith('\n');
}

void Output::finish() {
    writeAll(STDOUT_FILENO, buffer_);
    buffer_.clear();
}

void Output::append(std::string_view text) {
    buffer_ += text;
}

void Output::end() {
    endWith(options_.nulTerminated ? '\0' : '\n');
}

void Output::endWith(char terminator) {
    buffer_.push_back(terminator);
    if (buffer_.size() >= kBufferedBytes) finish();
}

}  // namespace zqpaths::program
