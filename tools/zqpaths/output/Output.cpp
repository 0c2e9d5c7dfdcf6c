#include "tools/zqpaths/output/Output.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

constexpr std::string_view kEndOfTableRow = "\r\n";

PathFields fieldsOf(const OutputOptions& options, const OutputManner& manner) {
    if (!options.fields.empty()) return options.fields;
    return options.csv || options.json ? manner.forPrograms : manner.asText;
}

/// Where JSON has the bytes of a field that is not UTF-8.
std::string_view bytesKeyOf(PathField field) {
    switch (field) {
        case PathField::kFolder:
            return "folderBytes";
        case PathField::kName:
            return "nameBytes";
        case PathField::kExtension:
            return "extensionBytes";
        default:
            return "bytes";
    }
}

constexpr const char* kInsteadOfNewline = " a newline, -0 ends paths with NUL";
constexpr const char* kInsteadOfTab = " a tab, --csv and --json tell where a field ends";

bool holds(std::string_view text, char character) {
    return text.find(character) != std::string_view::npos;
}

void tellOf(std::uint64_t count, const char* what) {
    if (count > 0) tell(groupDigits(count) + (count == 1 ? " path holds" : " paths hold") + what);
}

}  // namespace

Output::Mark Output::markOf(Side side) {
    return side == Side::kFirst ? Mark{kSideKey, '<', "first"} : Mark{kSideKey, '>', "second"};
}

Output::Mark Output::markOf(PathChange change) {
    switch (change) {
        case PathChange::kAdded:
            return {kChangeKey, '+', "added"};
        case PathChange::kBack:
            return {kChangeKey, '+', "back"};
        default:
            return {kChangeKey, '-', "gone"};
    }
}

Output::Output(const OutputOptions& options, OutputManner manner, OutputPlace place)
    : options_(options),
      manner_(std::move(manner)),
      fields_(fieldsOf(options_, manner_)),
      isTerminal_(isTerminal(place.descriptor)),
      charset_(charsetOf(place.descriptor)),
      isPathAlone_(!isTerminal_ && !options.csv && !options.json &&
                   fields_ == PathFields{PathField::kPath}),
      out_(std::move(place)) {}

void Output::path(std::uint64_t number, std::string_view path) {
    if (!isPathAlone_) {
        print({std::nullopt, number, path});
        return;
    }
    if (!options_.nulTerminated && holds(path, '\n')) note(Mistakable::kNewline, path);
    out_.buffer() += path;
    out_.buffer().push_back(options_.nulTerminated ? '\0' : '\n');
    out_.flushIfFull();
}

void Output::path(std::string_view path) {
    print({std::nullopt, std::nullopt, path});
}

void Output::pathIn(Side side, std::optional<std::uint64_t> number, std::string_view path) {
    print({markOf(side), number, path});
}

void Output::changed(PathChange change, std::uint64_t number, std::string_view path) {
    print({markOf(change), number, path});
}

void Output::print(const Row& row) {
    if (options_.json) {
        printObject(row);
    } else if (options_.csv) {
        printTableRow(row);
    } else {
        printText(row);
    }
}

void Output::printText(const Row& row) {
    note(mistakableIn(row.path), row.path);
    if (row.mark) {
        out_.buffer() += row.mark->sign;
        out_.buffer() += options_.fields.empty() ? ' ' : '\t';
    }
    bool isFirst = true;
    for (const PathField field : fields_) {
        if (!std::exchange(isFirst, false)) out_.buffer() += '\t';
        if (field != PathField::kNumber)
            appendName(partOf(field, row.path));
        else if (row.number)
            out_.buffer() += std::to_string(*row.number);
    }
    end();
}

void Output::printTableRow(const Row& row) {
    beginTable();
    if (row.mark) appendCell(row.mark->word);
    if (row.mark) out_.buffer() += ',';
    bool isFirst = true;
    for (const PathField field : fields_) {
        if (!std::exchange(isFirst, false)) out_.buffer() += ',';
        if (field != PathField::kNumber)
            appendCell(partOf(field, row.path));
        else if (row.number)
            out_.buffer() += std::to_string(*row.number);
    }
    endWith(kEndOfTableRow);
}

void Output::printObject(const Row& row) {
    object_.clear();
    if (row.mark) object_.add(row.mark->key, row.mark->word);
    for (const PathField field : fields_) {
        if (field != PathField::kNumber)
            object_.addName(nameOf(field), bytesKeyOf(field), partOf(field, row.path));
        else if (row.number)
            object_.add(nameOf(field), *row.number);
    }
    line(object_);
}

void Output::count(std::uint64_t count) {
    if (options_.json) {
        object_.clear();
        object_.add("count", count);
        line(object_);
        return;
    }
    if (options_.csv) out_.buffer().append("count").append(kEndOfTableRow);
    out_.buffer() += std::to_string(count);
    endWith(options_.csv ? kEndOfTableRow : "\n");
    hasTableBegun_ = true;
}

void Output::group(std::string_view folder, std::span<const std::string> fileNames) {
    if (options_.json) {
        object_.clear();
        object_.addName("folder", "folderBytes", folder);
        object_.addNames("files", "fileBytes", fileNames);
        line(object_);
        return;
    }
    for (const std::string& name : fileNames) {
        const std::string path = std::string(folder) + name;
        const bool isNewline = !isTerminal_ && !options_.nulTerminated && holds(path, '\n');
        note(isNewline ? Mistakable::kNewline : Mistakable::kNothing, path);
    }
    appendName(folder);
    end();
    for (const std::string& name : fileNames) {
        out_.buffer() += '\t';
        appendName(name);
        end();
    }
}

void Output::text(std::string_view text) {
    out_.buffer() += text;
}

void Output::line(std::string_view text) {
    out_.buffer() += text;
    endWith("\n");
}

void Output::line(JsonObject& object) {
    object.appendTo(out_.buffer(), charset_);
    endWith("\n");
}

void Output::flush() {
    out_.flush();
}

void Output::finish() {
    if (options_.csv) beginTable();
    flush();
    if (manner_.isQuiet) return;
    tellOf(newlineCount_, kInsteadOfNewline);
    tellOf(tabCount_, kInsteadOfTab);
}

void Output::beginTable() {
    if (std::exchange(hasTableBegun_, true)) return;
    if (!manner_.markKey.empty()) out_.buffer().append(manner_.markKey).append(",");
    bool isFirst = true;
    for (const PathField field : fields_) {
        if (!std::exchange(isFirst, false)) out_.buffer() += ',';
        out_.buffer() += nameOf(field);
    }
    endWith(kEndOfTableRow);
}

void Output::appendName(std::string_view name) {
    if (isTerminal_) {
        appendPrintable(name, charset_, out_.buffer());
    } else {
        out_.buffer() += name;
    }
}

Output::Mistakable Output::mistakableIn(std::string_view path) const {
    if (isTerminal_) return Mistakable::kNothing;
    bool hasTab = false;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i] == PathField::kNumber) continue;
        const std::string_view part = partOf(fields_[i], path);
        if (!options_.nulTerminated && holds(part, '\n')) return Mistakable::kNewline;
        hasTab = hasTab || (i + 1 < fields_.size() && holds(part, '\t'));
    }
    return hasTab ? Mistakable::kTab : Mistakable::kNothing;
}

/// With --strict, what has been printed before the path is there.
void Output::note(Mistakable what, std::string_view path) {
    if (what == Mistakable::kNothing) return;
    const bool isNewline = what == Mistakable::kNewline;
    if (options_.strict) {
        flush();
        throw failureAt(path,
                        std::string("holds") + (isNewline ? kInsteadOfNewline : kInsteadOfTab));
    }
    ++(isNewline ? newlineCount_ : tabCount_);
}

void Output::end() {
    endWith(options_.nulTerminated ? std::string_view("\0", 1) : "\n");
}

void Output::endWith(std::string_view terminator) {
    out_.buffer() += terminator;
    out_.flushIfFull();
}

/// In quotes where it has to be, and then with quotes doubled.
void Output::appendCell(std::string_view text) {
    std::string shown;
    if (isTerminal_) {
        appendPrintable(text, charset_, shown);
        text = shown;
    }
    std::string& buffer = out_.buffer();
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        buffer += text;
        return;
    }
    buffer += '"';
    for (const char character : text) buffer.append(character == '"' ? 2 : 1, character);
    buffer += '"';
}

}  // namespace zqpaths::program
