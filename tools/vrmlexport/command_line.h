#pragma once

#include "export/export.h"
#include "render/picture.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vrmlexport {

enum ExitStatus : std::uint8_t { kWritten = 0, kNothingWritten = 1, kWrongUsage = 2 };

/// The options and arguments of the command line.
struct CommandLine {
    std::string scene;  ///< A file, or "-" for standard input.
    std::string output; ///< A file, or "-" for standard output.
    const meshcast::exporter::Format* format = nullptr;
    std::string root; ///< Empty: the folder of the scene.
    std::string report;
    std::uint32_t segments = 32;
    meshcast::render::PictureOptions picture;
    bool isStrict = false;
    bool withoutInlines = false;
    bool isQuiet = false;
    bool showsProgress = false;
};

/// Parses the arguments. Returns the exit status instead if the program has to end: help was
/// printed, or wrong usage was reported.
std::optional<ExitStatus> parseCommandLine(int argc, char** argv, CommandLine& line);

/// The folder that textures and inlined scenes are read from.
std::string rootOf(const CommandLine& line);

} // namespace vrmlexport
