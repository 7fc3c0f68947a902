#pragma once

#include "export/export.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace meshcast::exporter {

/// Collects the bytes of a file.
class StringSink final : public ByteSink {
public:
    void write(std::string_view more) override { bytes.append(more); }

    std::string bytes;
};

inline std::string bytesOf(const File& file) {
    StringSink sink;
    file.write(sink);
    return sink.bytes;
}

/// Exports a model to a format. The export must succeed.
inline Exported exportTo(std::string_view extension, evaluate::Model model,
                         const std::string& name = "scene") {
    Exported exported = exportModel(std::move(model), *findFormat(extension), {name});
    EXPECT_EQ(exported.failure, "");
    return exported;
}

/// A model of one triangle, (0, 0, 0) (1, 0, 0) (0, 2, 0), with one material and one instance.
inline evaluate::Model triangle() {
    evaluate::Model model;
    model.materials.emplace_back();
    model.geometries.emplace_back();
    model.geometries[0].positions = {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}};
    model.geometries[0].normals.assign(3, {0, 0, 1});
    model.geometries[0].indices = {0, 1, 2};
    model.meshes = {{{{0, 0, 3, 0}}}};
    model.instances.emplace_back();
    return model;
}

} // namespace meshcast::exporter
