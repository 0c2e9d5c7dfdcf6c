#include "tools/zqpaths/report/ReportPage.hpp"

#include <array>
#include <functional>
#include <map>

#include "zqpaths/text/Base64.hpp"

// Compilers need take no more than 64 KiB for a text; those that build this take any length.
#pragma GCC diagnostic ignored "-Woverlength-strings"

namespace zqpaths::program {
namespace {

/// A file of this folder as CMake finds it, and the hash of its bytes.
struct PagePart {
    std::string_view text;
    std::string_view sha256;  // in hexadecimal digits
};

constexpr PagePart kPage{
#include "tools/zqpaths/report/page.html.inc"
};
constexpr PagePart kStyle{
#include "tools/zqpaths/report/style.css.inc"
};
constexpr PagePart kLicence{
#include "tools/zqpaths/report/d3-licence.txt.inc"
};

// In the order in which they need each other.
constexpr std::array kScripts{
    PagePart{
#include "tools/zqpaths/report/d3.min.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/folders.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/colours.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/fitting.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/tip.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/treemap.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/sunburst.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/map.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/search.js.inc"
    },
    PagePart{
#include "tools/zqpaths/report/charts.js.inc"
    },
};

unsigned digitOf(char digit) {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

/// As a Content-Security-Policy names what is allowed: nothing else that stands in the page is run.
std::string sourceOf(const PagePart& part) {
    std::string hash;
    for (std::size_t i = 0; i < part.sha256.size(); i += 2)
        hash.push_back(
            static_cast<char>(digitOf(part.sha256[i]) << 4U | digitOf(part.sha256[i + 1])));
    return " 'sha256-" + toBase64(hash) + '\'';
}

/// Everything is forbidden but these scripts and this style; so there is no network.
std::string policy() {
    std::string text = "default-src 'none'; style-src" + sourceOf(kStyle) + "; script-src";
    for (const PagePart& script : kScripts) text += sourceOf(script);
    return text + "; base-uri 'none'; form-action 'none'";
}

std::string scripts() {
    std::string text;
    for (const PagePart& script : kScripts)
        text.append(text.empty() ? "" : "\n")
            .append("<script>")
            .append(script.text)
            .append("</script>");
    return text;
}

std::string escapedText(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '<')
            escaped += "&lt;";
        else if (character == '&')
            escaped += "&amp;";
        else
            escaped += character;
    }
    return escaped;
}

}  // namespace

std::string reportPage(std::string_view title, std::string_view data) {
    const std::map<std::string_view, std::function<std::string()>> parts{
        {"policy", policy},
        {"version", [] { return ZQ_VERSION; }},
        {"title", [title] { return escapedText(title); }},
        {"licence", [] { return std::string(kLicence.text); }},
        {"style", [] { return std::string(kStyle.text); }},
        {"data", [data] { return std::string(data); }},
        {"scripts", scripts}};
    std::string page;
    std::string_view left = kPage.text;
    for (std::size_t mark = left.find("{{"); mark != std::string_view::npos;
         mark = left.find("{{")) {
        const std::size_t end = left.find("}}", mark);
        page.append(left.substr(0, mark)).append(parts.at(left.substr(mark + 2, end - mark - 2))());
        left.remove_prefix(end + 2);
    }
    return page.append(left);
}

}  // namespace zqpaths::program
