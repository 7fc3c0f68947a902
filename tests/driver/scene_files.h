#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// All scenes of the examples and of the tests.
inline std::vector<std::filesystem::path> sceneFiles() {
    std::vector<std::filesystem::path> files;
    for (const char* const folder : {EXAMPLES, SCENES}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".wrl") {
                files.push_back(entry.path());
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The bytes of a file; empty if the file does not exist.
inline std::string contents(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The name of a file as the name of a test: without extension, with underscores for hyphens.
inline std::string testName(const std::filesystem::path& path) {
    std::string name = path.stem();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}
