// Counts the objects and vertices that the scene on standard input is converted to.

#include "convert/convert.h"

#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"

#include <cstdint>
#include <iostream>

class Counter final : public meshcast::ObjectSink {
public:
    void write(const GEOMobj& object) override {
        ++objects;
        if (object.type == GEOM_POLYHEDRON) {
            vertices += object.polyhedron.vertices.used;
        }
    }
    void print(std::string_view) override {}

    std::int64_t objects = 0, vertices = 0;
};

int main() {
    meshcast::DescriptorSource input(0);
    meshcast::StandardErrorDiagnostics messages;
    Counter counter;
    const bool isRead = meshcast::convertScene(input, counter, messages);
    std::cout << counter.objects << " objects, " << counter.vertices << " vertices of polyhedra\n";
    return isRead ? 0 : 1;
}
