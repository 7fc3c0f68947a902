#include "tools/geomtool/listing.h"
#include "tools/geomtool/summary.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace geomtool {

using geom_stream::Object;

namespace {

constexpr std::string_view hex_digits = "0123456789abcdef";

/// In the shortest form that reads back as the same number, whatever the locale.
template <class Number, class... Base>
void append_number(std::string& text, Number number, Base... base) {
    std::array<char, 24> digits{};
    const std::to_chars_result result =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, base...);
    text.append(digits.data(), static_cast<std::size_t>(result.ptr - digits.data()));
}

// What follows writes one element of an array of values.
void append(std::string& text, std::int64_t number) { append_number(text, number); }
void append(std::string& text, std::int32_t number) { append_number(text, number); }

void append(std::string& text, float number) {
    if (std::isnan(number)) // the sign of a NaN says nothing
        text += "nan";
    else
        append_number(text, number);
}

void append(std::string& text, std::byte byte) {
    const auto value = std::to_integer<unsigned>(byte);
    text += hex_digits[value / 16];
    text += hex_digits[value % 16];
}

/// Between quotation marks, with every byte but printable ASCII as \xNN.
void append(std::string& text, const std::string& characters) {
    text += '"';
    for (const char character : characters) {
        if (character == '"' || character == '\\')
            text += '\\';
        if (character >= ' ' && character <= '~') {
            text += character;
        } else {
            text += "\\x";
            append(text, static_cast<std::byte>(character));
        }
    }
    text += '"';
}

template <class Sequence>
requires requires(const Sequence& sequence) { sequence[0]; }
void append(std::string& text, const Sequence& numbers) {
    std::string_view separator;
    for (const auto& number : numbers) {
        text += separator;
        append(text, number);
        separator = " ";
    }
}

std::string counted(std::uint64_t number, std::string_view noun) {
    std::string text = std::to_string(number);
    text.append(" ").append(noun);
    return number == 1 ? text : text + "s";
}

std::string hexadecimal(std::uint32_t number) {
    std::string text = "0x";
    append_number(text, number, 16);
    return text;
}

class TextListing final : public Listing {
public:
    TextListing(std::ostream& out, Coverage coverage) : out_(out), coverage_(coverage) {}

    void add(std::size_t number, const Object& object) override {
        if (coverage_ == Coverage::none)
            return;
        text_ = "object " + std::to_string(number) + ": ";
        text_ += kind_name(object.kind());
        text_ += ", version " + std::to_string(object.version) + ", offset " +
                 std::to_string(object.offset) + ", " + counted(object.size, "byte") + "\n";
        add_names(object);
        add_details(object);
        if (coverage_ == Coverage::values)
            add_values(object);
        out_ << text_;
    }

    void finish(const Totals& totals) override {
        if (coverage_ == Coverage::none) {
            out_ << "objects   " << totals.objects << "\nvertices  " << totals.vertices
                 << "\npolygons  " << totals.polygons << "\nbytes     " << totals.bytes << '\n';
            return;
        }
        out_ << counted(totals.objects, "object") << ", ";
        if (totals.error)
            out_ << totals.bytes << " of ";
        out_ << counted(totals.stream_bytes, "byte") << '\n';
    }

private:
    void detail(std::string_view name, std::string_view value) {
        constexpr std::size_t value_column = 11;
        text_.append("  ").append(name);
        text_.append(value_column - name.size(), ' ').append(value).append("\n");
    }

    void add_names(const Object& object) {
        for (const auto& [name, characters] :
             {std::pair{"name", &object.name}, std::pair{"text", &object.second_text}}) {
            std::string quoted;
            append(quoted, *characters);
            if (!characters->empty())
                detail(name, quoted);
        }
    }

    void add_details(const Object& object) {
        std::string flags;
        for (const std::string_view name : names_of_flags(object.flags))
            flags.append(flags.empty() ? "" : "|").append(name);
        detail("flags", (flags.empty() ? "none" : flags) + " (" + hexadecimal(object.flags) + ")");

        std::string list;
        for (const Count& count : counts(object))
            list.append(list.empty() ? "" : ", ")
                .append(count.name)
                .append(" ")
                .append(std::to_string(count.value));
        detail("counts", list);

        if (object.kind() == geom_stream::Kind::label) {
            const std::uint32_t label_flags = object.label().label_flags;
            detail("label",
                   describe_label_flags(label_flags) + " (" + hexadecimal(label_flags) + ")");
        }
        for (const geom_stream::Property& property : object.properties)
            detail("property", "kind " + std::to_string(property.kind) + ", value " +
                                   std::to_string(property.value) + ", " +
                                   counted(property.bytes.size(), "byte"));
        if (object.has_extent)
            detail("extent",
                   box(std::span(object.extent).first<3>(), std::span(object.extent).last<3>()));
        detail("bytecount", std::to_string(object.byte_count));
        const std::optional<Bounds> around = bounds(object);
        detail("bounds", around ? box(around->minimum, around->maximum) : "none");
        for (const std::string& note : notes(object))
            detail("note", note);
    }

    static std::string box(std::span<const float, 3> minimum, std::span<const float, 3> maximum) {
        std::string text;
        append(text, minimum);
        text += " .. ";
        append(text, maximum);
        return text;
    }

    void add_values(const Object& object) {
        for (const ValueGroup& group : value_groups(object)) {
            for (const auto& [name, values] : group.arrays) {
                text_ += "  ";
                if (!group.singular.empty())
                    text_.append(group.singular).append(" ");
                if (!group.plural.empty())
                    text_.append(std::to_string(group.number)).append(" ");
                text_.append(name).append("\n");
                std::visit([this](const auto& elements) { add_elements(elements); }, values);
            }
        }
    }

    void add_elements(PolygonsOf polygons) { add_elements(polygons.polyhedron->polygons()); }

    template <class Elements>
    void add_elements(const Elements& elements) {
        std::int64_t number = 0;
        for (const auto& element : elements) {
            text_ += "    ";
            append(text_, ++number);
            text_ += "  ";
            append(text_, element);
            text_ += '\n';
        }
    }

    std::ostream& out_;
    Coverage coverage_;
    std::string text_; ///< of the object at hand
};

} // namespace

std::unique_ptr<Listing> make_text_listing(std::ostream& out, Coverage coverage) {
    return std::make_unique<TextListing>(out, coverage);
}

} // namespace geomtool
