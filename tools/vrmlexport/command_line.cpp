#include "tools/vrmlexport/command_line.h"

#include "tidy/report.h"
#include "tools/export_output/export_output.h"
#include "tools/scene_file/scene_file.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <variant>

namespace vrmlexport {

namespace {

constexpr std::uint32_t kFewestSegments = 3, kMostSegments = 1024;

std::string footer() {
    return "OUTPUT's extension, or --format, says what is written:\n" + meshcast::formatsHelp() +
           "\nWhat is repaired, approximated or left out is reported on standard error, a line "
           "each.\n"
           "Exit status: 0 written, 1 nothing could be written, 2 wrong usage.";
}

/// A number of pixels; none if the text is no number or the number is too large.
std::optional<std::uint32_t> pixelsOf(std::string_view text) {
    std::uint32_t pixels = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, pixels);
    const bool isGood = error == std::errc() && stop == end && pixels >= 1 &&
                        pixels <= meshcast::render::kLargestSide;
    return isGood ? std::optional(pixels) : std::nullopt;
}

/// Parses a size such as "1280x720". Returns an error message for other texts, as option checks do.
std::string takeSize(const std::string& text, meshcast::render::PictureOptions& picture) {
    const std::size_t cross = text.find('x');
    const auto width = pixelsOf(std::string_view(text).substr(0, cross));
    const auto height = cross == std::string::npos
                            ? std::nullopt
                            : pixelsOf(std::string_view(text).substr(cross + 1));
    if (!width || !height) {
        return "--size: " + text + " is not WIDTHxHEIGHT, from 1 to " +
               std::to_string(meshcast::render::kLargestSide) + " pixels each";
    }
    picture.width = *width;
    picture.height = *height;
    return {};
}

/// Parses a colour such as "#ffe0c0", or "transparent".
std::string takeBackground(const std::string& text, meshcast::render::PictureOptions& picture) {
    if (text == "transparent") {
        picture.background.reset();
        return {};
    }
    std::uint32_t color = 0;
    const char* const end = text.data() + text.size();
    const bool isLong = text.size() == 7 && text[0] == '#';
    const auto [stop, error] = std::from_chars(isLong ? text.data() + 1 : end, end, color, 16);
    if (error != std::errc() || stop != end) {
        return "--background: " + text + " is neither transparent nor a colour such as #ffe0c0";
    }
    picture.background = {static_cast<std::uint8_t>(color >> 16U),
                          static_cast<std::uint8_t>(color >> 8U & 0xFFU),
                          static_cast<std::uint8_t>(color & 0xFFU)};
    return {};
}

} // namespace

std::optional<ExitStatus> parseCommandLine(int argc, char** argv, CommandLine& line) {
    CLI::App app("Writes a VRML 1.0 scene as a viewer would show it, in a format that other "
                 "programs open.",
                 "vrmlexport");
    app.set_version_flag("--version", "vrmlexport " VRMLEXPORT_VERSION);
    app.footer(footer());

    std::string format;
    app.add_option("SCENE", line.scene,
                   "The scene, as text or gzip-compressed; standard input when -")
        ->required();
    app.add_option("OUTPUT", line.output,
                   "The file to write, replaced in one step or left as it is; standard output "
                   "when -")
        ->required();
    app.add_option("--format", format, "Write this format, whatever OUTPUT is called");
    app.add_flag("--strict", line.isStrict,
                 "Repair nothing: read the scene as meshcast does, and fail if it cannot be read");
    app.add_option("--root", line.root,
                   "Read no texture or inlined scene outside of this folder; that of the scene "
                   "when absent")
        ->type_name("DIR");
    app.add_flag("--no-inline", line.withoutInlines,
                 "Leave out the scenes that WWWInline nodes name");
    app.add_option("--segments", line.segments,
                   "Draw spheres, cones and cylinders with this many segments around")
        ->check(CLI::Range(kFewestSegments, kMostSegments))
        ->capture_default_str();
    std::string size;
    app.add_option("--size", size,
                   "The width and height of a picture in pixels; 1280x720 when absent")
        ->type_name("WIDTHxHEIGHT");
    app.add_option("--view", line.picture.view,
                   "From where a picture is taken: fit, front, top, left, or a camera of the scene "
                   "by its name or number")
        ->capture_default_str();
    std::string background;
    app.add_option("--background", background,
                   "What is behind the scene in a picture: a colour such as #ffe0c0, or "
                   "transparent; white when absent")
        ->type_name("COLOR");
    app.add_option("--report", line.report,
                   "Write what was done, and what was left out, to this file as JSON")
        ->type_name("FILE");
    app.add_flag("--quiet", line.isQuiet, "Report failures only");
    app.add_flag("--progress", line.showsProgress,
                 "Show a bar on a terminal while work takes more than a second");

    std::string wrong;
    try {
        app.parse(argc, argv);
        if (!size.empty()) {
            wrong = takeSize(size, line.picture);
        }
        if (wrong.empty() && !background.empty()) {
            wrong = takeBackground(background, line.picture);
        }
        const auto chosen = meshcast::chooseFormat(format, line.output);
        if (!wrong.empty()) {
            // Already reported.
        } else if (const auto* const problem = std::get_if<std::string>(&chosen)) {
            wrong = *problem;
        } else {
            line.format = std::get<0>(chosen);
        }
    } catch (const CLI::ParseError& error) {
        // --help and --version get here too, with status 0. Error messages repeat the arguments.
        std::ostringstream message;
        if (app.exit(error, std::cout, message) == 0) {
            return kWritten;
        }
        wrong = error.what();
    }
    if (wrong.empty()) {
        return std::nullopt;
    }
    std::cerr << "vrmlexport: " << meshcast::tidy::printable(wrong)
              << "\nRun with --help for more information.\n";
    return kWrongUsage;
}

std::string rootOf(const CommandLine& line) {
    return line.root.empty() ? meshcast::folderOf(line.scene) : line.root;
}

} // namespace vrmlexport
