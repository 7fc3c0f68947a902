#include "io/files.h"
#include "tidy/folder_scenes.h"
#include "tidy/report.h"
#include "tidy/tidy.h"
#include "tools/scene_dump/scene_dump.h"
#include "tools/scene_file/scene_file.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

namespace {

namespace tidy = meshcast::tidy;

enum ExitStatus { kConverted = 0, kNotRepaired = 1, kWrongUsage = 2 };

struct CommandLine {
    std::string file = "-";
    std::string output = "-";
    std::string root;
    bool dump = false;
    bool quiet = false;
    bool strict = false;
    bool inlines = false;
};

ExitStatus fail(const std::string& file, const std::string& message) {
    std::cerr << "vrmltidy: " << tidy::printable(file) << ": " << message << '\n';
    return kNotRepaired;
}

/// Reads a scene like the filter and returns a dump with all its fields. Reports a failure and
/// returns nothing.
std::optional<std::string> dumped(const std::string& text) {
    meshcast::Scene scene;
    meshcast::MemorySource source(text);
    meshcast::StandardErrorDiagnostics messages;
    if (!meshcast::readScene(scene, source, messages)) {
        return std::nullopt;
    }
    std::ostringstream out;
    meshcast::dumpScene(scene.root, out);
    return std::move(out).str();
}

ExitStatus run(const CommandLine& line) {
    const std::string shown = meshcast::shownName(line.file);
    auto input = meshcast::readSceneFile(line.file);
    if (input.index() == 1) {
        return fail(shown, std::get<1>(input));
    }

    tidy::Options options;
    options.path = shown;
    meshcast::ReportLines lines(line.quiet);
    options.report = [&lines](const tidy::Message& message) { lines.add(message); };
    std::optional<tidy::FolderScenes> scenes;
    if (line.inlines) {
        const std::string name = line.root.empty() ? meshcast::folderOf(line.file) : line.root;
        auto root = meshcast::io::Folder::open(name);
        if (const auto* const error = std::get_if<std::error_code>(&root)) {
            return fail(name, "cannot be used as a root: " + error->message());
        }
        options.identity = tidy::fileIdentity(line.file);
        scenes.emplace(std::get<meshcast::io::Folder>(std::move(root)));
        options.inlines = &*scenes;
    }

    tidy::Result result = tidy::tidy(std::get<0>(std::move(input)), options);
    lines.addCount(shown, result.repairs);
    if (!result.text) {
        return fail(shown, result.refusal);
    }
    if (line.strict && result.repairs != 0) {
        return fail(shown, "needs repairs, which --strict does not allow");
    }
    if (line.dump) {
        result.text = dumped(*result.text);
        if (!result.text) {
            return fail(shown, "cannot be read in full");
        }
    }
    const std::error_code error = meshcast::writeOutput(line.output, [&result](int descriptor) {
        return meshcast::io::writeAll(descriptor, *result.text);
    });
    if (error) {
        return fail(line.output == "-" ? "standard output" : line.output,
                    "cannot be written: " + error.message());
    }
    return kConverted;
}

ExitStatus run(int argc, char** argv) {
    CLI::App app("Repairs a VRML 1.0 scene, so that meshcast reads all of it.", "vrmltidy");
    app.set_version_flag("--version", "vrmltidy " VRMLTIDY_VERSION);
    app.footer("Each repair is reported on standard error as FILE:LINE: WHAT WAS DONE, followed by "
               "their number.\n"
               "Exit status: 0 converted, 1 cannot be repaired, 2 wrong usage.");

    CommandLine line;
    app.add_option("FILE", line.file,
                   "The scene, as text or gzip-compressed; standard input when "
                   "absent or -");
    app.add_option("-o", line.output,
                   "Write to this file instead of standard output; it is "
                   "replaced atomically, or kept on failure")
        ->type_name("FILE");
    app.add_flag("--dump", line.dump,
                 "Write every node with the values of all its fields, default values as comments");
    app.add_flag("--quiet", line.quiet, "Do not report repairs");
    app.add_flag("--strict", line.strict, "Make any repair an error: no output, status 1");
    CLI::Option* const inlines = app.add_flag(
        "--inline", line.inlines, "Replace WWWInline nodes by the scenes that they name");
    app.add_option("--root", line.root,
                   "With --inline, read no file outside of this folder; "
                   "default: the folder of the scene")
        ->type_name("DIR")
        ->needs(inlines);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // --help and --version get here too, with status 0. Error messages are made printable,
        // since they repeat the arguments.
        std::ostringstream message;
        const bool isWrong = app.exit(error, std::cout, message) != 0;
        std::istringstream lines(message.str());
        for (std::string text; std::getline(lines, text);) {
            std::cerr << tidy::printable(text) << '\n';
        }
        return isWrong ? kWrongUsage : kConverted;
    }
    return run(line);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "vrmltidy: out of memory\n";
    } catch (const std::exception& error) {
        std::cerr << "vrmltidy: " << error.what() << '\n';
    }
    return kNotRepaired;
}
