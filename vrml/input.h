#pragma once

#include "vrml/byte_source.h"
#include "vrml/names.h"
#include "vrml/number_scan.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace meshcast {

class Diagnostics;
class Scene;

/// The reader's only source of characters: checks the header line, counts lines, skips white space
/// and comments, reads the tokens on which fields and nodes are built, and reports read errors. It
/// knows nothing of nodes beyond the scene that they go to.
///
/// Operations return false when they fail. At the end of the input every token reader fails
/// without a message: the caller knows what it expected.
class VrmlInput {
public:
    /// What `get` stores when there is no character. A byte of this value in the input is read but
    /// never put back.
    static constexpr char kEndOfFile = static_cast<char>(255);
    /// Names are cut, not split, after this many characters.
    static constexpr std::size_t kMaxNameLength = 255;

    /// Reads from `source` into `scene`. All three must outlive the input.
    VrmlInput(Scene& scene, ByteSource& source, Diagnostics& diagnostics);

    /// Turns to another source, at its line 1. Whether the header has been read stays as it is.
    void attach(ByteSource& source);

    /// Yields the next character; the header line is checked before the first.
    bool get(char& c) {
        if (next_ == end_ && !advance()) {
            c = kEndOfFile;
            return false;
        }
        c = *next_++;
        return true;
    }

    /// Puts the character just read back.
    void putBack(char c) {
        if (c != kEndOfFile) {
            --next_;
        }
    }

    /// Puts a word back: it is read again, character by character, before the rest of the input.
    /// Only one word can be pending; a second one replaces the first.
    void putBackWord(std::string_view word);

    /// Skips white space and comments. Fails only when the header check does.
    bool skipWhiteSpace() {
        // Nearly always a token is ahead, or a blank and a token.
        const char* const ahead = next_ + (*next_ == ' ' ? 1 : 0);
        if (isTokenStart(*ahead)) {
            next_ = ahead;
            return true;
        }
        return skipLongWhiteSpace();
    }

    /// Reads one character and fails, with the character put back, when it is not `expected`.
    bool readExpected(char expected) {
        if (next_ == end_ && !advance()) {
            return false;
        }
        const char c = *next_;
        next_ += c == expected || c == kEndOfFile ? 1 : 0;
        return c == expected;
    }

    /// Reads an identifier: a letter or `_`, then letters, digits and `_`. When no such character
    /// follows, the read succeeds with the empty name.
    bool readName(InternedName& name);

    /// Reads a string in double quotes, in which `\"` stands for a quote, or a word that runs to
    /// the next white space.
    bool readString(std::string& text);

    /// Read an integer with an optional sign (see scanMagnitude). White space before it is skipped.
    bool readInteger(std::int32_t& value);
    bool readShort(std::int16_t& value);

    /// Reads an integer without a sign. The caller skips white space.
    bool readUnsigned(std::uint32_t& value);

    /// Reads a real number (see scanReal). The caller skips white space.
    bool readReal(double& value);

    /// Skips to the brace that closes a node body whose opening brace has been read. Braces in
    /// quoted strings count like others.
    void skipBody();

    /// Reports a read error with the current line.
    [[gnu::format(printf, 2, 3)]] void readError(const char* format, ...) const;

    /// True once an attempt to read past the last character has failed: not yet when the last
    /// character has been read.
    bool metEnd() const { return atEnd_; }
    /// False once the header check has failed.
    bool noErrorSoFar() const { return noErrorSoFar_; }
    /// The version that the header names, 0 when the header is not known.
    float version() const { return version_; }
    std::int32_t line() const { return static_cast<std::int32_t>(line_); }

    Scene& scene() { return scene_; }
    Diagnostics& diagnostics() { return diagnostics_; }
    /// How many node bodies are being read, one inside the other. The node reader counts.
    int& nestingDepth() { return nestingDepth_; }

private:
    static constexpr std::size_t kBlockSize = std::size_t(64) * 1024;

    /// Whether a token scanned up to `last` has been seen whole, so that reading may go on there.
    bool isWhole(const char* last) const { return last != end_ && *last != kEndOfFile; }

    /// True for what surely is a character of the input that no white space or comment holds:
    /// printable ones, so neither the zero at the end nor a byte 255.
    static bool isTokenStart(char c) { return c > ' ' && c < '\x7f' && c != '#'; }

    bool advance();
    bool refill();
    bool checkHeader();
    bool rejectHeader();
    bool skipLongWhiteSpace();
    bool skipComment();
    // Read parts of a number, character by character, into a text.
    bool collectOne(std::string& text, char expected);
    void collectSign(std::string& text);
    void collectDigits(std::string& text, bool (*taken)(char));
    void collectMagnitude(std::string& text);
    void collectReal(std::string& text);
    // Numbers that the block's end cuts, collected and scanned. Apart from the functions that read
    // whole ones: the string here would cost each of those a checked frame.
    [[gnu::noinline]] ScannedInteger scanCutInteger();
    [[gnu::noinline]] ScannedMagnitude scanCutMagnitude();
    [[gnu::noinline]] ScannedReal scanCutReal();

    Scene& scene_;
    ByteSource* source_;
    Diagnostics& diagnostics_;
    // The characters at hand: those of the block, or of the word that was put back. Behind `end_`
    // stands a zero.
    const char* next_;
    const char* end_;
    // Where the block goes on while a word that was put back is read.
    const char* blockNext_ = nullptr;
    const char* blockEnd_ = nullptr;
    bool readingWord_ = false;
    bool atEnd_ = false;
    bool headerRead_ = false;
    bool noErrorSoFar_ = true;
    float version_ = 1.0F;
    std::uint32_t line_ = 1;
    std::unique_ptr<char[]> block_;
    std::string word_;
    int nestingDepth_ = 0;
};

} // namespace meshcast
