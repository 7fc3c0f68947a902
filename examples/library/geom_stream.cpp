// Lists the kinds and sizes of the objects in the stream on standard input.

#include "geom_stream/record_reader.h"

#include <cstdio>
#include <iostream>

int main() {
    geom_stream::RecordReader reader(
        [](std::byte* into, std::size_t capacity) { return std::fread(into, 1, capacity, stdin); });
    while (const auto object = reader.next()) {
        std::cout << geom_stream::kindName(object->kind()) << ", " << object->size << " bytes\n";
    }
    if (reader.error()) {
        std::cerr << "damaged at " << reader.error()->offset << ": " << reader.error()->message
                  << '\n';
        return 1;
    }
}
