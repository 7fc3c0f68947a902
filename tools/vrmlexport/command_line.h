#pragma once

#include "export/export.h"
#include "render/picture.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vrmlexport {

enum ExitStatus : std::uint8_t { kWritten = 0, kNothingWritten = 1, kWrongUsage = 2 };

/// What the user asks for.
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

/// Takes the arguments apart. Gives the status to end with instead when there is nothing to do:
/// help has been asked for and printed, or wrong usage reported.
std::optional<ExitStatus> parseCommandLine(int argc, char** argv, CommandLine& line);

/// The folder outside of which nothing is read.
std::string rootOf(const CommandLine& line);

} // namespace vrmlexport
