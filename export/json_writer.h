#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast::exporter {

/// Appends a JSON document (RFC 8259) to a text, value by value. Adds commas and line breaks. The
/// caller must write a value after each key, and match each begin with an end.
///
/// There is no tree of the document, since for a large scene it would take more time and memory
/// than the scene itself.
class JsonWriter {
public:
    explicit JsonWriter(std::string& text) : text_(text) {}

    /// The elements of lists and objects down to this depth begin a new line.
    void breakLinesTo(std::size_t depth) { deepestBreak_ = depth; }

    JsonWriter& beginObject() { return begin('{'); }
    JsonWriter& endObject() { return end('}'); }
    JsonWriter& beginArray() { return begin('['); }
    JsonWriter& endArray() { return end(']'); }

    /// Writes the key of the next value. It must not need escapes.
    JsonWriter& key(std::string_view name);

    /// Writes the shortest decimal that reads as the same float. `number` must be finite.
    JsonWriter& value(float number);
    template <std::unsigned_integral Number>
    JsonWriter& value(Number number) {
        return append(number);
    }
    JsonWriter& value(bool is);
    /// Writes a text in UTF-8. Escapes `<`, so that the document can be put into an HTML script
    /// element.
    JsonWriter& value(std::string_view text);
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }

    template <typename Value>
    JsonWriter& member(std::string_view name, const Value& what) {
        return key(name).value(what);
    }
    /// An array of numbers.
    template <typename Numbers>
    JsonWriter& list(std::string_view name, const Numbers& numbers) {
        key(name).beginArray();
        for (const auto& number : numbers) {
            value(number);
        }
        return endArray();
    }

private:
    JsonWriter& begin(char bracket);
    JsonWriter& end(char bracket);
    JsonWriter& append(unsigned long long number);
    void startElement();

    std::string& text_;
    std::size_t depth_ = 0, deepestBreak_ = 0;
    bool isFirst_ = true;   ///< Of the list or object.
    bool isMember_ = false; ///< A key has been written, but not yet its value.
};

} // namespace meshcast::exporter

#pragma GCC visibility pop
