#include "vrml/input.h"

#include "vrml/characters.h"
#include "vrml/messages.h"
#include "vrml/number_scan.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

// Tokens are scanned where they lie in the block. The zero behind the block ends every token, so
// the scanning loops need no test for the block's end; a token that runs into it may go on in the
// next block and is read once more, character by character. So is a token in front of a byte 255,
// which is the one character that cannot be put back.

namespace meshcast {

namespace {

struct Header {
    std::string_view line;
    float version;
};

constexpr std::array<Header, 1> kHeaders = {{{"#VRML V1.0 ascii", 1.0F}}};
/// Lines are collected up to this length, beyond which none can match.
constexpr std::size_t kMaxHeaderLength = 256;

constexpr const char* kBadHeader = "File does not have a valid header string";

} // namespace

VrmlInput::VrmlInput(NodePool& nodes, ByteSource& source)
    : nodes_(nodes), source_(&source), block_(std::make_unique<char[]>(kBlockSize + 2)) {
    attach(source);
}

void VrmlInput::attach(ByteSource& source) {
    source_ = &source;
    next_ = end_ = block_.get() + 1;
    block_[1] = '\0';
    readingWord_ = false;
    atEnd_ = false;
    noErrorSoFar_ = true;
    version_ = 1.0F;
    line_ = 1;
}

/// Brings at least one more character to hand.
bool VrmlInput::advance() {
    if (readingWord_) {
        readingWord_ = false;
        next_ = blockNext_;
        end_ = blockEnd_;
        if (next_ != end_) {
            return true;
        }
    }
    if (!headerRead_ && !checkHeader()) {
        return false;
    }
    return next_ != end_ || refill();
}

bool VrmlInput::refill() {
    if (atEnd_) {
        return false;
    }
    // The last character stays in front of the new ones: it may be put back.
    block_[0] = end_[-1];
    char* const first = block_.get() + 1;
    const std::size_t count = source_->read(first, kBlockSize);
    first[count] = '\0';
    next_ = first;
    end_ = first + count;
    atEnd_ = count == 0;
    return count != 0;
}

bool VrmlInput::checkHeader() {
    headerRead_ = true;
    noErrorSoFar_ = false;
    char c = 0;
    if (!get(c) || c != '#') {
        putBack(c);
        readError("%s", kBadHeader);
        return false;
    }
    std::string line(1, c);
    while (get(c) && c != '\n') {
        if (line.size() < kMaxHeaderLength) {
            line += c;
        }
    }
    line_ += c == '\n' ? 1 : 0;
    const auto* const header =
        std::find_if(kHeaders.begin(), kHeaders.end(),
                     [&line](const Header& candidate) { return candidate.line == line; });
    version_ = header == kHeaders.end() ? 0.0F : header->version;
    if (version_ == 0.0F) {
        readError("%s", kBadHeader);
        return false;
    }
    noErrorSoFar_ = true;
    return true;
}

void VrmlInput::putBackWord(std::string_view word) {
    // A word that was just read is still there to be stepped back over.
    const char* const blockFirst = block_.get() + 1;
    if (!readingWord_ && static_cast<std::size_t>(next_ - blockFirst) >= word.size() &&
        std::string_view(next_ - word.size(), word.size()) == word) {
        next_ -= word.size();
        return;
    }
    if (!readingWord_) {
        blockNext_ = next_;
        blockEnd_ = end_;
        readingWord_ = true;
    }
    word_.assign(1, '\0').append(word);
    next_ = word_.data() + 1;
    end_ = word_.data() + word_.size();
}

/// Skips the rest of a comment and its newline.
bool VrmlInput::skipComment() {
    while (next_ != end_ || advance()) {
        const void* const newline =
            std::memchr(next_, '\n', static_cast<std::size_t>(end_ - next_));
        if (newline != nullptr) {
            next_ = static_cast<const char*>(newline) + 1;
            ++line_;
            return true;
        }
        next_ = end_;
    }
    return false;
}

bool VrmlInput::skipWhiteSpace() {
    for (;;) {
        char c = 0;
        if (!get(c)) {
            return noErrorSoFar_;
        }
        if (c == '\n') {
            ++line_;
        } else if (c == '#') {
            if (!skipComment()) {
                readError("EOF reached before end of comment");
            }
        } else if (!isSpace(c)) {
            putBack(c);
            return true;
        }
    }
}

bool VrmlInput::readExpected(char expected) {
    char c = 0;
    if (!get(c)) {
        return false;
    }
    if (c != expected) {
        putBack(c);
        return false;
    }
    return true;
}

bool VrmlInput::readName(InternedName& name) {
    if (!skipWhiteSpace()) {
        return false;
    }
    char c = 0;
    if (!get(c)) {
        return false;
    }
    putBack(c);
    if (!isNameStart(c)) {
        name = InternedName();
        return true;
    }
    const char* last = next_;
    while (isNameCharacter(*last)) {
        ++last;
    }
    if (isWhole(last)) {
        const std::string_view text(next_, static_cast<std::size_t>(last - next_));
        name = InternedName(text.substr(0, kMaxNameLength));
        next_ = last;
        return true;
    }
    std::string text;
    while (get(c) && isNameCharacter(c)) {
        if (text.size() < kMaxNameLength) {
            text += c;
        }
    }
    putBack(c);
    name = InternedName(text);
    return true;
}

bool VrmlInput::readString(std::string& text) {
    text.clear();
    char c = 0;
    if (!skipWhiteSpace() || !get(c)) {
        return false;
    }
    const bool quoted = c == '"';
    if (!quoted) {
        putBack(c);
    }
    const auto endsRun = [quoted](char candidate) {
        return quoted ? candidate == '"' || candidate == '\\' || candidate == '\n'
                      : isSpace(candidate);
    };
    while (next_ != end_ || advance()) {
        const char* const run = std::find_if(next_, end_, endsRun);
        text.append(next_, run);
        next_ = run;
        if (run == end_) {
            continue;
        }
        if (!quoted) {
            return true;
        }
        c = *next_++;
        if (c == '"') {
            return true;
        }
        line_ += c == '\n' ? 1 : 0;
        // Of all escapes only the quote's is one; any other backslash stands for itself.
        if (c == '\\' && readExpected('"')) {
            c = '"';
        }
        text += c;
    }
    return true;
}

void VrmlInput::collectDigits(std::string& text, bool (*taken)(char)) {
    char c = 0;
    while (get(c) && taken(c)) {
        text += c;
    }
    putBack(c);
}

void VrmlInput::collectMagnitude(std::string& text) {
    if (readExpected('0')) {
        text += '0';
        if (readExpected('x')) {
            text += 'x';
            collectDigits(text, isHexDigit);
            return;
        }
    }
    collectDigits(text, isDigit);
}

void VrmlInput::collectReal(std::string& text) {
    const auto collect = [this, &text](char c) {
        const bool found = readExpected(c);
        if (found) {
            text += c;
        }
        return found;
    };
    if (!collect('-')) {
        collect('+');
    }
    collectDigits(text, isDigit);
    if (collect('.')) {
        collectDigits(text, isDigit);
    }
    // A marker without digits before it is not read: the number has failed already.
    if (scanReal(text.c_str()).ok && (collect('e') || collect('E'))) {
        if (!collect('-')) {
            collect('+');
        }
        collectDigits(text, isDigit);
    }
}

bool VrmlInput::readInteger(std::int32_t& value) {
    if (!skipWhiteSpace()) {
        return false;
    }
    const bool negative = readExpected('-');
    if (!negative) {
        readExpected('+');
    }
    const ScannedMagnitude scanned = scanMagnitude(next_);
    if (isWhole(scanned.end)) {
        next_ = scanned.end;
        value = narrowSigned(scanned, negative);
        return scanned.ok;
    }
    std::string text;
    collectMagnitude(text);
    const ScannedMagnitude collected = scanMagnitude(text.c_str());
    value = narrowSigned(collected, negative);
    return collected.ok;
}

bool VrmlInput::readShort(std::int16_t& value) {
    std::int32_t wide = 0;
    const bool ok = readInteger(wide);
    value = static_cast<std::int16_t>(wide);
    return ok;
}

bool VrmlInput::readUnsigned(std::uint32_t& value) {
    const ScannedMagnitude scanned = scanMagnitude(next_);
    if (isWhole(scanned.end)) {
        next_ = scanned.end;
        value = narrowUnsigned(scanned);
        return scanned.ok;
    }
    std::string text;
    collectMagnitude(text);
    const ScannedMagnitude collected = scanMagnitude(text.c_str());
    value = narrowUnsigned(collected);
    return collected.ok;
}

bool VrmlInput::readReal(double& value) {
    ScannedReal scanned = scanReal(next_);
    if (isWhole(scanned.end)) {
        next_ = scanned.end;
        value = scanned.value;
        return scanned.ok;
    }
    std::string text;
    collectReal(text);
    scanned = scanReal(text.c_str());
    value = scanned.value;
    return scanned.ok;
}

void VrmlInput::skipBody() {
    for (std::int64_t depth = 1; depth > 0;) {
        char c = 0;
        if (!get(c)) {
            return;
        }
        if (c == '{') {
            ++depth;
        } else if (c == '}') {
            --depth;
        }
    }
}

void VrmlInput::readError(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string message = formatMessage(format, arguments);
    va_end(arguments);
    std::array<char, 64> lineText{};
    std::snprintf(lineText.data(), lineText.size(), "\tOccurred at line %3d", line());
    std::fprintf(stderr, "VRML read error: %s\n%s\n", message.c_str(), lineText.data());
}

} // namespace meshcast
