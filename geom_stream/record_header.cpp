#include "geom_stream/record_header.h"

#include "compat/geom/format.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace geom_stream {
namespace {

constexpr std::size_t kMagicSize = sizeof GEOM_MAGIC;

void readMagic(ItemReader& in, Object& object) {
    const std::uint64_t start = in.offset();
    const std::span bytes = in.take(kMagicSize, "magic");
    if (!in.ok()) {
        return;
    }
    if (load<std::endian::big, std::uint32_t>(bytes.data()) == GEOM_MAGIC) {
        object.version = GEOM_VERSION_XDR;
    } else if (load<std::endian::little, std::uint32_t>(bytes.data()) == GEOM_MAGIC) {
        object.version = GEOM_VERSION_RAW;
        in.setOrder(std::endian::little);
    } else {
        in.fail(start, "expected magic \"GM64\" or \"46MG\"");
    }
}

std::uint32_t readFlags(ItemReader& in) {
    const std::uint64_t start = in.offset();
    const std::uint32_t flags = in.word("data");
    // An unknown bit may mean an array of unknown length, after which nothing can be decoded.
    if ((flags & ~kKnownFlags) != 0) {
        in.fail(start, "expected data with bits 0x1 to 0x100 only, found " + std::to_string(flags));
    }
    return flags;
}

Kind readKind(ItemReader& in) {
    const std::uint64_t start = in.offset();
    const std::uint32_t type = in.word("type");
    if (type < static_cast<std::uint32_t>(Kind::kMesh) ||
        type > static_cast<std::uint32_t>(Kind::kLabel)) {
        in.fail(start, "expected type 1 to 5, found " + std::to_string(type));
    }
    return static_cast<Kind>(type);
}

std::vector<Property> readProperties(ItemReader& in) {
    std::vector<Property> properties;
    const auto count = in.count<std::int32_t>("property count");
    for (std::int32_t i = 0; i < count && in.ok(); ++i) {
        Property property;
        property.kind = in.word("property kind");
        const std::uint32_t length = in.word("property length");
        property.value = in.word("property value");
        property.bytes = in.run<std::vector<std::byte>>(length, "property bytes");
        properties.push_back(std::move(property));
    }
    return properties;
}

std::string readString(ItemReader& in, std::string_view what) {
    const std::uint64_t start = in.offset();
    const std::uint32_t length = in.word(what);
    if (length > GEOM_MAX_STRING_BYTES) {
        in.fail(start, "expected " + std::string(what) + " of at most " +
                           std::to_string(GEOM_MAX_STRING_BYTES) + " bytes, found length " +
                           std::to_string(length));
        return {};
    }
    return in.run<std::string>(length, what);
}

/// Text up to its first NUL, of at most `limit` bytes including the NUL.
std::string readTerminated(ItemReader& in, std::uint64_t limit, std::string_view what) {
    std::string text;
    for (std::uint64_t i = 0; i < limit && in.ok(); ++i) {
        const std::span byte = in.take(1, what);
        if (byte.empty()) {
            return {};
        }
        if (byte.front() == std::byte{0}) {
            return text;
        }
        text.push_back(static_cast<char>(byte.front()));
    }
    in.fail(in.offset(), "expected the NUL of " + std::string(what) + " within hdrsize");
    return {};
}

void readNames(ItemReader& in, Object& object) {
    constexpr std::string_view kName = "name";
    constexpr std::string_view kSecondText = "second text";
    constexpr std::uint64_t kHdrsizePlace = 4;

    std::uint64_t counted = 0;
    for (const Property& property : object.properties) {
        counted += GEOM_PROPERTY_BYTES + property.bytes.size();
    }

    if (in.isXdr()) {
        object.name = readString(in, kName);
        object.secondText = readString(in, kSecondText);
    } else {
        for (const auto& [text, what] :
             {std::pair{&object.name, kName}, std::pair{&object.secondText, kSecondText}}) {
            const std::uint64_t limit =
                object.headerSize > counted ? object.headerSize - counted : 0;
            *text = readTerminated(in, limit, what);
            counted += text->size() + 1;
        }
    }
    if (object.headerSize != counted) {
        in.fail(object.offset + kHdrsizePlace, "expected hdrsize " + std::to_string(counted) +
                                                   ", found " + std::to_string(object.headerSize));
    }
}

} // namespace

Kind readHeader(ItemReader& in, Object& object) {
    readMagic(in, object);
    object.headerSize = in.word("hdrsize");
    object.flags = readFlags(in);
    const Kind kind = readKind(in);
    for (float& coordinate : object.extent) {
        coordinate = in.scalar<float>("extent");
    }
    object.hasExtent = in.truth<std::int32_t>("has_extent");
    object.byteCount = in.scalar<std::int64_t>("bytecount");
    object.properties = readProperties(in);
    readNames(in, object);
    return kind;
}

} // namespace geom_stream
