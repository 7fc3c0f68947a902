#include "vrml/input.h"

#include "vrml/characters.h"
#include "vrml/diagnostics.h"
#include "vrml/list_scan.h"
#include "vrml/number_scan.h"
#include "vrml/scene.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstring>

// Tokens are scanned in place in the block. A zero byte after the block ends every token, so the
// scanning loops need no test for the end of the block. A token that reaches this zero may continue
// in the next block and is read again, character by character. So is a token that is followed by a
// byte 255, the one character that cannot be put back.

namespace meshcast {

namespace {

constexpr std::string_view kHeader = "#VRML V1.0 ascii";
/// The header line is collected up to this length; no longer line can match.
constexpr std::size_t kMaxHeaderLength = 256;

} // namespace

VrmlInput::VrmlInput(Scene& scene, ByteSource& source, Diagnostics& diagnostics)
    : scene_(scene), source_(&source), diagnostics_(diagnostics),
      block_(std::make_unique<char[]>(kBlockSize + 1 + kScanSlack)) {
    attach(source);
}

void VrmlInput::attach(ByteSource& source) {
    source_ = &source;
    next_ = end_ = block_.get();
    block_[0] = '\0';
    readingWord_ = false;
    atEnd_ = false;
    noErrorSoFar_ = true;
    version_ = 1.0F;
    line_ = 1;
}

/// Makes at least one more character available; false at the end of the input.
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
    char* const first = block_.get();
    const std::size_t count = source_->read(first, kBlockSize);
    first[count] = '\0';
    next_ = first;
    end_ = first + count;
    atEnd_ = count == 0;
    return count != 0;
}

bool VrmlInput::checkHeader() {
    headerRead_ = true;
    char c = 0;
    if (!get(c) || c != '#') {
        putBack(c);
        return rejectHeader();
    }
    std::string line(1, c);
    while (get(c) && c != '\n') {
        if (line.size() < kMaxHeaderLength) {
            line += c;
        }
    }
    line_ += c == '\n' ? 1 : 0;
    version_ = line == kHeader ? 1.0F : 0.0F;
    return version_ != 0.0F || rejectHeader();
}

bool VrmlInput::rejectHeader() {
    readError("File does not have a valid header string");
    noErrorSoFar_ = false;
    return false;
}

void VrmlInput::putBackWord(std::string_view word) {
    // A word that was just read is still in the block: step back over it.
    if (!readingWord_ && static_cast<std::size_t>(next_ - block_.get()) >= word.size() &&
        std::string_view(next_ - word.size(), word.size()) == word) {
        next_ -= word.size();
        return;
    }
    if (!readingWord_) {
        blockNext_ = next_;
        blockEnd_ = end_;
        readingWord_ = true;
    }
    word_ = word;
    next_ = word_.data();
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

bool VrmlInput::skipLongWhiteSpace() {
    for (;;) {
        const char* p = next_;
        for (; isSpace(*p); ++p) {
            line_ += *p == '\n' ? 1 : 0;
            while (p[1] == ' ') { // Most white space is indentation.
                ++p;
            }
        }
        next_ = p;
        if (p == end_) {
            if (!advance()) {
                return noErrorSoFar_;
            }
        } else if (*p == '#') {
            ++next_;
            if (!skipComment()) {
                readError("EOF reached before end of comment");
            }
        } else {
            next_ += *p == kEndOfFile ? 1 : 0;
            return true;
        }
    }
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
        name = scene_.intern(text.substr(0, kMaxNameLength));
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
    name = scene_.intern(text);
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
        // Only \" is an escape; any other backslash stands for itself.
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
    const bool isHexadecimal = collectOne(text, '0') && collectOne(text, 'x');
    collectDigits(text, isHexadecimal ? isHexDigit : isDigit);
}

bool VrmlInput::collectOne(std::string& text, char expected) {
    const bool found = readExpected(expected);
    if (found) {
        text += expected;
    }
    return found;
}

void VrmlInput::collectSign(std::string& text) {
    if (!collectOne(text, '-')) {
        collectOne(text, '+');
    }
}

void VrmlInput::collectReal(std::string& text) {
    collectSign(text);
    collectDigits(text, isDigit);
    if (collectOne(text, '.')) {
        collectDigits(text, isDigit);
    }
    // Without digits before it, an exponent marker is not read: the number is already invalid.
    if (scanReal(text.c_str()).ok && (collectOne(text, 'e') || collectOne(text, 'E'))) {
        collectSign(text);
        collectDigits(text, isDigit);
    }
}

ScannedInteger VrmlInput::scanCutInteger() {
    std::string text;
    collectSign(text);
    collectMagnitude(text);
    return scanInteger(text.c_str());
}

ScannedMagnitude VrmlInput::scanCutMagnitude() {
    std::string text;
    collectMagnitude(text);
    return scanMagnitude(text.c_str());
}

ScannedReal VrmlInput::scanCutReal() {
    std::string text;
    collectReal(text);
    return scanReal(text.c_str());
}

bool VrmlInput::readInteger(std::int32_t& value) {
    if (!skipWhiteSpace()) {
        return false;
    }
    ScannedInteger scanned = scanInteger(next_);
    if (isWhole(scanned.end)) {
        next_ = scanned.end;
    } else {
        scanned = scanCutInteger();
    }
    value = scanned.value;
    return scanned.ok;
}

bool VrmlInput::readShort(std::int16_t& value) {
    std::int32_t wide = 0;
    const bool ok = readInteger(wide);
    value = static_cast<std::int16_t>(wide);
    return ok;
}

bool VrmlInput::readUnsigned(std::uint32_t& value) {
    ScannedMagnitude scanned = scanMagnitude(next_);
    if (isWhole(scanned.end)) {
        next_ = scanned.end;
    } else {
        scanned = scanCutMagnitude();
    }
    value = narrowUnsigned(scanned);
    return scanned.ok;
}

bool VrmlInput::readReal(double& value) {
    ScannedReal scanned = scanReal(next_);
    if (isWhole(scanned.end)) {
        next_ = scanned.end;
    } else {
        scanned = scanCutReal();
    }
    value = scanned.value;
    return scanned.ok;
}

template <class Scalar>
bool VrmlInput::readPlainValues(std::size_t width, std::span<Scalar> into, std::size_t& count) {
    count = 0;
    if (readingWord_) {
        return false; // The word is too short to look ahead in.
    }
    const PlainValues taken = scanPlainValues(next_, width, into);
    next_ = taken.end;
    line_ += taken.lines;
    count = taken.count;
    return taken.closed;
}

template bool VrmlInput::readPlainValues(std::size_t width, std::span<float> into,
                                         std::size_t& count);
template bool VrmlInput::readPlainValues(std::size_t width, std::span<std::int32_t> into,
                                         std::size_t& count);

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

void VrmlInput::readError(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    report(diagnostics_, DiagnosticKind::kReadError, line(), format, arguments);
    va_end(arguments);
}

} // namespace meshcast
