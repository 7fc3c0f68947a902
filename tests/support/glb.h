#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tiny_gltf.h>

/// Loads a GLB file with an independent implementation, which must report no errors or warnings.
inline tinygltf::Model loadedGlb(const std::string& bytes) {
    tinygltf::TinyGLTF loader;
    tinygltf::Model model;
    std::string errors, warnings;
    EXPECT_TRUE(loader.LoadBinaryFromMemory(&model, &errors, &warnings,
                                            reinterpret_cast<const unsigned char*>(bytes.data()),
                                            static_cast<unsigned>(bytes.size())));
    EXPECT_EQ(errors + warnings, "");
    return model;
}
