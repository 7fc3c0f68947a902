#include "geom_stream/stream_input.h"

#include <algorithm>
#include <utility>

namespace geom_stream {

Input::Input(ReadBytes read)
    : read_(std::move(read)), buffer_(std::make_unique_for_overwrite<std::byte[]>(kCapacity)) {}

void Input::fill(std::size_t least) {
    std::byte* const first = buffer_.get();
    std::copy(first + next_, first + end_, first);
    end_ -= next_;
    next_ = 0;
    while (end_ < least && !atEnd_) {
        const std::size_t size = read_(first + end_, kCapacity - end_);
        end_ += size;
        atEnd_ = size == 0;
    }
}

std::uint64_t Input::skipToEnd() {
    for (std::size_t size = ahead(1).size(); size > 0; size = ahead(1).size()) {
        skip(size);
    }
    return offset_;
}

} // namespace geom_stream
