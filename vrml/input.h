#pragma once

#include "vrml/byte_source.h"
#include "vrml/names.h"
#include "vrml/number_scan.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default)

namespace meshcast {

class Diagnostics;
class Scene;

/// The reader's only source of characters: checks the header line, counts lines, skips white space
/// and comments, reads the tokens that fields and nodes consist of, and reports read errors. It
/// knows the scene that nodes are added to, but not the nodes.
///
/// Operations return false when they fail. At the end of the input every token reader fails
/// without a message: the caller reports what it expected.
class VrmlInput {
public:
    /// What `get` stores when there is no character. A byte of this value in the input is read but
    /// never put back.
    static constexpr char kEndOfFile = static_cast<char>(255);
    /// Further characters of a name are read but dropped.
    static constexpr std::size_t kMaxNameLength = 255;

    /// Reads from `source` into `scene`. All three must outlive the input.
    VrmlInput(Scene& scene, ByteSource& source, Diagnostics& diagnostics);

    /// Continues with another source, at line 1. Does not check its header line if one has been
    /// read already.
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
        // Nearly always the next character starts a token, or a blank and then a token follow.
        const char* const ahead = next_ + (*next_ == ' ' ? 1 : 0);
        if (isTokenStart(*ahead)) {
            next_ = ahead;
            return true;
        }
        return skipLongWhiteSpace();
    }

    /// Reads one character. When it is not `expected`, puts it back and fails.
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

    /// Reads values of a list, each of `width` scalars, with the commas and the `]` after them, as
    /// long as they are plain (see scanPlainValues) and there is room. Stores how many scalars it
    /// has read; true when the list is at its end.
    template <class Scalar>
    bool readPlainValues(std::size_t width, std::span<Scalar> into, std::size_t& count);

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
    /// The children of these bodies, as far as they have been read. Groups keep this list.
    std::vector<QvNode*>& childrenBeingRead() { return childrenBeingRead_; }

private:
    static constexpr std::size_t kBlockSize = std::size_t(64) * 1024;

    /// Whether a token that was scanned up to `last` is complete, so that reading can continue
    /// there.
    bool isWhole(const char* last) const { return last != end_ && *last != kEndOfFile; }

    /// True for printable characters that start no comment. The zero byte that ends a block and a
    /// byte 255 are not printable.
    static bool isTokenStart(char c) { return c > ' ' && c < '\x7f' && c != '#'; }

    bool advance();
    bool refill();
    bool checkHeader();
    bool rejectHeader();
    bool skipLongWhiteSpace();
    bool skipComment();
    // Append parts of a number to a text, character by character.
    bool collectOne(std::string& text, char expected);
    void collectSign(std::string& text);
    void collectDigits(std::string& text, bool (*taken)(char));
    void collectMagnitude(std::string& text);
    void collectReal(std::string& text);
    // Collect and scan a number that crosses the end of the block. Kept out of line: their local
    // string would add a stack check to every number that is read.
    [[gnu::noinline]] ScannedInteger scanCutInteger();
    [[gnu::noinline]] ScannedMagnitude scanCutMagnitude();
    [[gnu::noinline]] ScannedReal scanCutReal();

    Scene& scene_;
    ByteSource* source_;
    Diagnostics& diagnostics_;
    // The characters to read next: those of the block, or of the word that was put back. A zero
    // byte follows at `end_`.
    const char* next_;
    const char* end_;
    // Where reading the block continues after the word that was put back.
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
    std::vector<QvNode*> childrenBeingRead_;
};

} // namespace meshcast

#pragma GCC visibility pop
