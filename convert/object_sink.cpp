#include "convert/object_sink.h"

#include <cstdio>

namespace meshcast {

void DescriptorSink::write(const GEOMobj& object) {
    GEOMwrite_obj(&object, descriptor_, 0);
}

void DescriptorSink::print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace meshcast
