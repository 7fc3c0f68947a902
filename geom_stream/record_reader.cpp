#include "geom_stream/record_reader.h"

#include "geom_stream/item_reader.h"
#include "geom_stream/record_body.h"
#include "geom_stream/record_header.h"

#include <algorithm>
#include <utility>

namespace geom_stream {

std::optional<Object> RecordReader::next() {
    if (error_ || input_.ahead(1).empty()) {
        return std::nullopt;
    }
    ItemReader in(input_);
    std::optional<Object> object(std::in_place);
    object->offset = in.offset();
    const Kind kind = readHeader(in, *object);
    if (in.ok()) {
        readBody(in, kind, *object);
    }
    object->size = in.offset() - object->offset;
    if (!in.ok()) {
        error_ = in.error();
        object.reset();
    }
    return object;
}

DecodeResult decode(std::span<const std::byte> stream) {
    RecordReader reader([rest = stream](std::byte* into, std::size_t capacity) mutable {
        const std::size_t size = std::min(capacity, rest.size());
        std::copy_n(rest.begin(), size, into);
        rest = rest.subspan(size);
        return size;
    });
    DecodeResult result;
    while (std::optional<Object> object = reader.next()) {
        result.objects.push_back(std::move(*object));
    }
    result.error = reader.error();
    return result;
}

} // namespace geom_stream
