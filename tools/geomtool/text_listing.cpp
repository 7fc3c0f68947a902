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

constexpr std::string_view kHexDigits = "0123456789abcdef";

/// The shortest text that reads back as the same number, independent of the locale.
template <class Number, class... Base>
void appendNumber(std::string& text, Number number, Base... base) {
    std::array<char, 24> digits{};
    const std::to_chars_result result =
        std::to_chars(digits.data(), digits.data() + digits.size(), number, base...);
    text.append(digits.data(), static_cast<std::size_t>(result.ptr - digits.data()));
}

// The functions below write one element of an array.
void append(std::string& text, std::int64_t number) { appendNumber(text, number); }
void append(std::string& text, std::int32_t number) { appendNumber(text, number); }

void append(std::string& text, float number) {
    if (std::isnan(number)) // the sign of a NaN has no meaning
        text += "nan";
    else
        appendNumber(text, number);
}

void append(std::string& text, std::byte byte) {
    const auto value = std::to_integer<unsigned>(byte);
    text += kHexDigits[value / 16];
    text += kHexDigits[value % 16];
}

/// In quotation marks, with every byte that is not printable ASCII as \xNN.
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
    appendNumber(text, number, 16);
    return text;
}

class TextListing final : public Listing {
public:
    TextListing(std::ostream& out, Coverage coverage) : out_(out), coverage_(coverage) {}

    void add(std::uint64_t number, const Object& object) override {
        if (coverage_ == Coverage::kNone)
            return;
        text_ = "object " + std::to_string(number) + ": ";
        text_ += kindName(object.kind());
        text_ += ", version " + std::to_string(object.version) + ", offset " +
                 std::to_string(object.offset) + ", " + counted(object.size, "byte") + "\n";
        addNames(object);
        addDetails(object);
        if (coverage_ == Coverage::kValues)
            addValues(object);
        out_ << text_;
    }

    void finish(const Totals& totals) override {
        if (coverage_ == Coverage::kNone) {
            out_ << "objects   " << totals.objects << "\nvertices  " << totals.vertices
                 << "\npolygons  " << totals.polygons << "\nbytes     " << totals.bytes << '\n';
            return;
        }
        out_ << counted(totals.objects, "object") << ", ";
        if (totals.error)
            out_ << totals.bytes << " of ";
        out_ << counted(totals.streamBytes, "byte") << '\n';
    }

private:
    void detail(std::string_view name, std::string_view value) {
        constexpr std::size_t kValueColumn = 11;
        text_.append("  ").append(name);
        text_.append(kValueColumn - name.size(), ' ').append(value).append("\n");
    }

    void addNames(const Object& object) {
        for (const auto& [name, characters] :
             {std::pair{"name", &object.name}, std::pair{"text", &object.secondText}}) {
            std::string quoted;
            append(quoted, *characters);
            if (!characters->empty())
                detail(name, quoted);
        }
    }

    void addDetails(const Object& object) {
        std::string flags;
        for (const std::string_view name : namesOfFlags(object.flags))
            flags.append(flags.empty() ? "" : "|").append(name);
        detail("flags", (flags.empty() ? "none" : flags) + " (" + hexadecimal(object.flags) + ")");

        std::string list;
        for (const Count& count : counts(object))
            list.append(list.empty() ? "" : ", ")
                .append(count.name)
                .append(" ")
                .append(std::to_string(count.value));
        detail("counts", list);

        if (object.kind() == geom_stream::Kind::kLabel) {
            const std::uint32_t labelFlags = object.label().labelFlags;
            detail("label", describeLabelFlags(labelFlags) + " (" + hexadecimal(labelFlags) + ")");
        }
        for (const geom_stream::Property& property : object.properties)
            detail("property", "kind " + std::to_string(property.kind) + ", value " +
                                   std::to_string(property.value) + ", " +
                                   counted(property.bytes.size(), "byte"));
        if (object.hasExtent)
            detail("extent",
                   box(std::span(object.extent).first<3>(), std::span(object.extent).last<3>()));
        detail("bytecount", std::to_string(object.byteCount));
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

    void addValues(const Object& object) {
        for (const ValueGroup& group : valueGroups(object)) {
            for (const auto& [name, values] : group.arrays) {
                text_ += "  ";
                if (!group.singular.empty())
                    text_.append(group.singular).append(" ");
                if (!group.plural.empty())
                    text_.append(std::to_string(group.number)).append(" ");
                text_.append(name).append("\n");
                std::visit([this](const auto& elements) { addElements(elements); }, values);
            }
        }
    }

    void addElements(PolygonsOf polygons) { addElements(polygons.polyhedron->polygons()); }

    template <class Elements>
    void addElements(const Elements& elements) {
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
    std::string text_; ///< of the current object
};

} // namespace

std::unique_ptr<Listing> makeTextListing(std::ostream& out, Coverage coverage) {
    return std::make_unique<TextListing>(out, coverage);
}

} // namespace geomtool
