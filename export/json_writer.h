#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast::exporter {

/// Appends a JSON document (RFC 8259) to a text, one value after the other. Commas and line breaks
/// come by themselves; that keys and ends fit together is up to the caller.
///
/// A scene of 100 MB has some hundred thousand small objects: a tree of them, written at the end,
/// would take more time and memory than the scene itself.
class JsonWriter {
public:
    explicit JsonWriter(std::string& text) : text_(text) {}

    /// The elements of lists and objects down to this depth begin a new line.
    void breakLinesTo(std::size_t depth) { deepestBreak_ = depth; }

    JsonWriter& beginObject() { return begin('{'); }
    JsonWriter& endObject() { return end('}'); }
    JsonWriter& beginArray() { return begin('['); }
    JsonWriter& endArray() { return end(']'); }

    /// The name of the value that comes next: a word that needs no escapes.
    JsonWriter& key(std::string_view name);

    /// The shortest decimal that is read as the same float. It has to be finite.
    JsonWriter& value(float number);
    template <std::unsigned_integral Number>
    JsonWriter& value(Number number) {
        return append(number);
    }
    JsonWriter& value(bool is);
    /// A text in UTF-8. `<` is escaped, so that the document can stand in a script element of HTML.
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
    bool isMember_ = false; ///< A key has been written, and its value has not.
};

} // namespace meshcast::exporter

#pragma GCC visibility pop
