#include "tidy/preamble.h"

#include "tidy/lexer.h"
#include "tidy/node_class.h"
#include "tidy/report.h"
#include "vrml/number_scan.h"

#include <algorithm>
#include <cstring>

namespace meshcast::tidy {

namespace {

/// How other kinds of files begin, in lower case.
struct Beginning {
    std::string_view text;
    std::string_view what;
};
constexpr Beginning kOthers[] = {
    {"#x3d", "X3D"},
    {"<x3d", "X3D"},
    {"<!doctype x3d", "X3D"},
    {"<?xml", "XML"},
    {"pk\x03\x04", "a ZIP archive"},
    {"\x1f\x9d", "a compressed file of another kind than gzip"},
    {"bzh", "a compressed file of another kind than gzip"},
    {"\xfd\x37zxz", "a compressed file of another kind than gzip"},
};
constexpr Beginning kPages[] = {{"<html", "HTML"}, {"<!doctype html", "HTML"}, {"<head", "HTML"}};

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.size() >= beginning.size() &&
           equalInAnyCase(text.substr(0, beginning.size()), beginning);
}

bool isBlank(char c) { return c == ' ' || c == '\t'; }

void skipBlanks(std::string_view& text) {
    text.remove_prefix(static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), isBlank) - text.begin()));
}

/// The digit after "#VRML V" in any spelling of it; 0 when there is none.
char headerVersion(std::string_view line) {
    constexpr std::string_view kName = "vrml";
    if (!line.starts_with('#')) {
        return 0;
    }
    line.remove_prefix(1);
    skipBlanks(line);
    if (!beginsWith(line, kName)) {
        return 0;
    }
    line.remove_prefix(kName.size());
    skipBlanks(line);
    if (beginsWith(line, "v")) {
        line.remove_prefix(1);
        skipBlanks(line);
    }
    return !line.empty() && line[0] >= '0' && line[0] <= '9' ? line[0] : '\0';
}

std::string_view lineAt(std::string_view text, std::size_t first) {
    return text.substr(first, text.find('\n', first) - first);
}

/// The offset of a header line among the first lines; npos when there is none.
std::size_t findHeaderLine(std::string_view text) {
    constexpr std::size_t kFarthest = std::size_t(64) * 1024;
    for (std::size_t first = 0; first < std::min(text.size(), kFarthest);) {
        if (headerVersion(lineAt(text, first)) == '1') {
            return first;
        }
        const std::size_t newline = text.find('\n', first);
        first = newline == std::string_view::npos ? text.size() : newline + 1;
    }
    return std::string_view::npos;
}

/// True for text that begins with a node but has no header.
bool beginsWithNode(std::string_view text) {
    Lexer lexer(text);
    const char* p = lexer.skipSpace(lexer.begin());
    std::string_view word = lexer.name(p);
    if (word == "DEF") {
        p = lexer.skipSpace(lexer.string(lexer.skipSpace(p + 3)).end());
        word = lexer.name(p);
    }
    return findClass(word) != nullptr && lexer.at(lexer.skipSpace(p + word.size())) == '{';
}

/// For text without a header at its beginning: what it is instead of a scene.
std::string refusalOf(std::string_view text, std::string_view line) {
    for (const Beginning& other : kOthers) {
        if (beginsWith(line, other.text)) {
            return std::string("is ").append(other.what).append(", not VRML 1.0");
        }
    }
    const char version = headerVersion(line);
    if (version != 0) {
        return std::string("is VRML ") + version + (version == '2' ? ".0" : "") + ", not VRML 1.0";
    }
    for (const Beginning& page : kPages) {
        if (beginsWith(line, page.text)) {
            return "is HTML, not VRML 1.0";
        }
    }
    const auto isBinary = [](char c) { return isControl(c) && !isSpace(c); };
    if (std::any_of(line.begin(), line.end(), isBinary)) {
        return "is binary data, not VRML 1.0";
    }
    return text.empty() ? "is empty" : "is not VRML 1.0: it begins with " + quoted(line);
}

/// True for the first line of another kind of scene.
bool isOtherFormat(std::string_view line) {
    const char version = headerVersion(line);
    return (version != 0 && version != '1') || beginsWith(line, "#inventor") ||
           std::any_of(std::begin(kOthers), std::end(kOthers),
                       [line](const Beginning& other) { return beginsWith(line, other.text); });
}

/// Converts line ends to LF. Lone carriage returns count as line ends only if the first line ends
/// in one. Otherwise the filter takes them as white space or as part of a comment.
void mendLineEnds(std::string& text, std::vector<std::string>& repairs) {
    char* const first = text.data();
    char* const last = first + text.size();
    auto* from = static_cast<char*>(std::memchr(first, '\r', text.size()));
    if (from == nullptr) {
        return;
    }
    const char* const content = std::find_if_not(first, last, isSpace);
    const char* const lineEnd = std::find_if(content, static_cast<const char*>(last),
                                             [](char c) { return c == '\r' || c == '\n'; });
    const bool areAlone =
        lineEnd != last && *lineEnd == '\r' && (lineEnd + 1 == last || lineEnd[1] != '\n');
    std::size_t pairs = 0;
    std::size_t alone = 0;
    char* to = from;
    while (from != last) {
        char* const after = std::find_if(from, last, [](char c) { return c != '\r'; });
        const auto count = static_cast<std::size_t>(after - from);
        // A file that was converted to CRLF twice has CR CR LF for one line end.
        const bool isPair = after != last && *after == '\n';
        const std::size_t kept = !isPair ? count : (areAlone ? count - 1 : 0);
        to = std::fill_n(to, kept, areAlone ? '\n' : '\r');
        pairs += isPair ? 1 : 0;
        alone += areAlone ? kept : 0;
        auto* next =
            static_cast<char*>(std::memchr(after, '\r', static_cast<std::size_t>(last - after)));
        next = next == nullptr ? last : next;
        std::memmove(to, after, static_cast<std::size_t>(next - after));
        to += next - after;
        from = next;
    }
    text.resize(static_cast<std::size_t>(to - first));
    if (pairs != 0) {
        repairs.push_back("converted " + counted(pairs, "CRLF line end") + " to LF");
    }
    if (alone != 0) {
        repairs.push_back("converted " + counted(alone, "CR line end") + " to LF");
    }
}

/// In some places the filter takes a byte of value 255 for the end of the file.
void mendEndMarks(std::string& text, std::vector<std::string>& repairs) {
    constexpr char kEndMark = '\xff';
    if (text.find(kEndMark) != std::string::npos) {
        const auto count = std::count(text.begin(), text.end(), kEndMark);
        std::replace(text.begin(), text.end(), kEndMark, ' ');
        repairs.push_back("replaced " + counted(static_cast<std::size_t>(count), "byte") +
                          " of value 255 by blanks");
    }
}

} // namespace

Preamble prepare(std::string& bytes) {
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    Preamble preamble;
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) {
        preamble.refusal = "is UTF-16 text, not VRML 1.0";
        return preamble;
    }
    const bool isMarked = bytes.starts_with(kByteOrderMark);
    if (isMarked) {
        preamble.repairs.emplace_back("removed a byte order mark");
        std::fill_n(bytes.begin(), kByteOrderMark.size(), ' ');
    }
    mendLineEnds(bytes, preamble.repairs);
    mendEndMarks(bytes, preamble.repairs);

    const std::string_view text = bytes;
    const std::size_t content = std::min(
        text.size(), static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isSpace) -
                                              text.begin()));
    const std::string_view line = lineAt(text, content);
    std::size_t header = content;
    if (headerVersion(line) != '1') {
        header = isOtherFormat(line) ? std::string_view::npos : findHeaderLine(text);
        if (header == std::string_view::npos) {
            if (!isOtherFormat(line) && beginsWithNode(text)) {
                preamble.repairs.emplace_back("added the missing header line");
                return preamble;
            }
            preamble.refusal = refusalOf(text.substr(content), line);
            return preamble;
        }
        preamble.repairs.emplace_back("dropped the text before the header line");
    } else if (content != (isMarked ? kByteOrderMark.size() : 0)) {
        preamble.repairs.emplace_back("dropped the space before the header line");
    }
    const std::string_view headerLine = lineAt(text, header);
    if (headerLine != kHeader) {
        preamble.repairs.push_back("rewrote the header line " + quoted(headerLine));
    }
    preamble.headerSize = header + headerLine.size();
    preamble.hasHeader = header == 0 && headerLine == kHeader;
    return preamble;
}

} // namespace meshcast::tidy
