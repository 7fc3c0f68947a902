#include "tools/vrmlexport/command_line.h"

#include "tidy/report.h"
#include "tools/export_output/export_output.h"
#include "tools/scene_file/scene_file.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <sstream>
#include <string>
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
    app.add_option("--report", line.report,
                   "Write what was done, and what was left out, to this file as JSON")
        ->type_name("FILE");
    app.add_flag("--quiet", line.isQuiet, "Report failures only");
    app.add_flag("--progress", line.showsProgress,
                 "Show a bar on a terminal while work takes more than a second");

    std::string wrong;
    try {
        app.parse(argc, argv);
        const auto chosen = meshcast::chooseFormat(format, line.output);
        if (const auto* const problem = std::get_if<std::string>(&chosen)) {
            wrong = *problem;
        } else {
            line.format = std::get<0>(chosen);
        }
    } catch (const CLI::ParseError& error) {
        // Help and version come this way too, with status 0. Other texts repeat the arguments.
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
