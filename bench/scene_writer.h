#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace bench {

/// A length in thousandths of a unit, which is printed with up to three decimals.
using Thousandths = std::int64_t;

struct Point {
    Thousandths x, y, z;
};

/// Writes a scene in the style of exporters: one value per line, indented by depth, with commas.
class SceneWriter {
public:
    explicit SceneWriter(std::FILE* to) : to_(to), buffer_(kBufferSize) {
        text("#VRML V1.0 ascii\n");
    }

    std::size_t written() const { return flushed_ + used_; }

    /// Writes a line, such as a field with its value.
    void line(std::string_view words) {
        indent();
        text(words);
        text("\n");
    }

    /// A field with numbers in thousandths. The parameter is an initializer list, whose elements
    /// are evaluated in order, so that random numbers are drawn in the order of the text.
    void field(std::string_view name, std::initializer_list<Thousandths> numbers) {
        indent();
        text(name);
        for (const Thousandths number : numbers) {
            text(" ");
            thousandths(number);
        }
        text("\n");
    }

    void open(std::string_view words, std::string_view bracket = " {\n") {
        indent();
        text(words);
        text(bracket);
        ++depth_;
    }

    /// Opens a node with a name made of a word and a number.
    void openNamed(std::string_view word, int number, std::string_view words) {
        indent();
        text("DEF ");
        name(word, number);
        text(" ");
        text(words);
        text(" {\n");
        ++depth_;
    }

    void use(std::string_view word, int number) {
        indent();
        text("USE ");
        name(word, number);
        text("\n");
    }

    void close() {
        --depth_;
        line("}");
    }

    /// A field with a list of points, vectors or colours.
    void pointList(std::string_view field, const std::vector<Point>& points) {
        openList(field);
        for (const Point& point : points) {
            pointValue(point);
        }
        closeList();
    }

    void openList(std::string_view field) {
        open(field, " [");
        firstValue_ = true;
    }

    void pointValue(const Point& point) {
        separateValues();
        thousandths(point.x);
        text(" ");
        thousandths(point.y);
        text(" ");
        thousandths(point.z);
    }

    /// A face: its indices and -1, on one line.
    template <typename Indices>
    void faceValue(const Indices& indices) {
        separateValues();
        for (const int index : indices) {
            integer(index);
            text(", ");
        }
        text("-1");
    }

    void indexValue(int index) {
        separateValues();
        integer(index);
    }

    void closeList() {
        text("\n");
        --depth_;
        line("]");
    }

    /// Writes the rest of the buffer; false if anything could not be written.
    bool finish() {
        flush();
        return std::fflush(to_) == 0 && !failed_;
    }

private:
    static constexpr std::size_t kBufferSize = std::size_t(1) << 20U;
    static constexpr std::size_t kLongestPiece = 64;
    static constexpr std::size_t kIndentWidth = 2;

    void text(std::string_view piece) {
        reserve(piece.size());
        std::memcpy(buffer_.data() + used_, piece.data(), piece.size());
        used_ += piece.size();
    }

    void indent() {
        constexpr std::string_view blanks = "                                ";
        text(blanks.substr(0, depth_ * kIndentWidth));
    }

    void separateValues() {
        text(firstValue_ ? "\n" : ",\n");
        firstValue_ = false;
        indent();
    }

    template <typename Number>
    void print(Number number) {
        reserve(kLongestPiece);
        char* const begin = buffer_.data() + used_;
        const auto printed = std::to_chars(begin, begin + kLongestPiece, number);
        used_ += static_cast<std::size_t>(printed.ptr - begin);
    }

    void integer(int number) { print(number); }
    void thousandths(Thousandths number) { print(static_cast<double>(number) / 1000.0); }

    void name(std::string_view word, int number) {
        text(word);
        text("_");
        integer(number);
    }

    void reserve(std::size_t size) {
        if (buffer_.size() - used_ < size) {
            flush();
        }
    }

    void flush() {
        failed_ = failed_ || std::fwrite(buffer_.data(), 1, used_, to_) != used_;
        flushed_ += used_;
        used_ = 0;
    }

    std::FILE* to_;
    std::vector<char> buffer_;
    std::size_t used_ = 0;
    std::size_t flushed_ = 0;
    std::size_t depth_ = 0;
    bool firstValue_ = true;
    bool failed_ = false;
};

} // namespace bench
