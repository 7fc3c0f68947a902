#include "io/files.h"
#include "tidy/folder_scenes.h"
#include "tidy/report.h"
#include "tidy/tidy.h"
#include "tools/scene_dump/scene_dump.h"
#include "vrml/byte_source.h"
#include "vrml/diagnostics.h"
#include "vrml/scene.h"
#include "vrml/scene_reader.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <variant>

namespace {

namespace tidy = meshcast::tidy;

enum ExitStatus { kConverted = 0, kNotRepaired = 1, kWrongUsage = 2 };

struct CommandLine {
    std::string file = "-";
    std::string output;
    std::string root;
    bool dump = false;
    bool quiet = false;
    bool strict = false;
    bool inlines = false;
};

/// Lines for standard error, of which a bad scene can have a million: they are written in pieces.
class Lines {
public:
    explicit Lines(bool areQuiet) : areQuiet_(areQuiet) {}
    Lines(const Lines&) = delete;
    Lines& operator=(const Lines&) = delete;
    ~Lines() { flush(); }

    void add(const tidy::Message& message) {
        if (areQuiet_) {
            return;
        }
        text_.append(message.file).append(":").append(std::to_string(message.line)).append(": ");
        text_.append(message.what).append("\n");
        if (text_.size() > kPieceSize) {
            flush();
        }
    }
    void addCount(const std::string& file, std::size_t repairs) {
        if (!areQuiet_ && repairs != 0) {
            text_.append(tidy::printable(file))
                .append(": ")
                .append(tidy::counted(repairs, "repair"))
                .append("\n");
        }
        flush();
    }

private:
    static constexpr std::size_t kPieceSize = std::size_t(64) * 1024;

    void flush() {
        std::cerr << text_ << std::flush;
        text_.clear();
    }

    bool areQuiet_;
    std::string text_;
};

ExitStatus fail(const std::string& file, const std::string& message) {
    std::cerr << "vrmltidy: " << tidy::printable(file) << ": " << message << '\n';
    return kNotRepaired;
}

/// The name of the folder outside of which no file is read.
std::string rootOf(const CommandLine& line) {
    if (!line.root.empty()) {
        return line.root;
    }
    const std::string folder =
        line.file == "-" ? "" : std::filesystem::path(line.file).parent_path().string();
    return folder.empty() ? "." : folder;
}

/// All bytes of a file or, for "-", of standard input; or why they cannot be had.
std::variant<std::string, std::string> read(const std::string& file) {
    auto bytes = file == "-" ? meshcast::io::readWhole(STDIN_FILENO, tidy::kLargestScene)
                             : meshcast::io::readFile(file, tidy::kLargestScene);
    if (const auto* const error = std::get_if<std::error_code>(&bytes)) {
        return std::variant<std::string, std::string>(
            std::in_place_index<1>,
            *error == std::errc::file_too_large
                ? "is longer than " + std::to_string(tidy::kLargestScene) + " bytes"
                : "cannot be read: " + error->message());
    }
    return std::variant<std::string, std::string>(std::in_place_index<0>,
                                                  std::get<std::string>(std::move(bytes)));
}

std::error_code write(const std::string& file, const std::string& text) {
    const auto writeText = [&text](int descriptor) {
        return meshcast::io::writeAll(descriptor, text);
    };
    return file.empty() ? meshcast::io::writeStandardOutput(writeText)
                        : meshcast::io::writeFile(file, writeText);
}

/// Reads a scene as the filter does and gives all its fields; nothing if it cannot be read, which
/// is reported.
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
    const std::string shown = line.file == "-" ? "<stdin>" : line.file;
    auto input = read(line.file);
    if (input.index() == 1) {
        return fail(shown, std::get<1>(input));
    }

    tidy::Options options;
    options.path = shown;
    Lines lines(line.quiet);
    options.report = [&lines](const tidy::Message& message) { lines.add(message); };
    std::optional<tidy::FolderScenes> scenes;
    if (line.inlines) {
        auto root = meshcast::io::Folder::open(rootOf(line));
        if (const auto* const error = std::get_if<std::error_code>(&root)) {
            return fail(rootOf(line), "cannot be used as a root: " + error->message());
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
    const std::error_code error = write(line.output, *result.text);
    if (error) {
        return fail(line.output.empty() ? "standard output" : line.output,
                    "cannot be written: " + error.message());
    }
    return kConverted;
}

ExitStatus run(int argc, char** argv) {
    CLI::App app("Repairs a VRML 1.0 scene, so that meshcast reads all of it.", "vrmltidy");
    app.set_version_flag("--version", "vrmltidy " VRMLTIDY_VERSION);
    app.footer("Each repair is reported on standard error as FILE:LINE: WHAT WAS DONE, and their "
               "number at the end.\n"
               "Exit status: 0 converted, 1 cannot be repaired, 2 wrong usage.");

    CommandLine line;
    app.add_option("FILE", line.file,
                   "The scene, as text or gzip-compressed; standard input when "
                   "absent or -");
    app.add_option("-o", line.output,
                   "Write to this file instead of standard output; it is "
                   "replaced in one step, or left as it is")
        ->type_name("FILE");
    app.add_flag("--dump", line.dump,
                 "Write the scene as it is read: every node with the values of all its fields, "
                 "those at their default as comments");
    app.add_flag("--quiet", line.quiet, "Do not report repairs");
    app.add_flag("--strict", line.strict, "Make any repair an error: no output, status 1");
    CLI::Option* const inlines = app.add_flag(
        "--inline", line.inlines, "Put the scenes that WWWInline nodes name in their places");
    app.add_option("--root", line.root,
                   "With --inline, read no file outside of this folder; that "
                   "of the scene when absent")
        ->type_name("DIR")
        ->needs(inlines);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version come this way too, with status 0. Other texts repeat the arguments.
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
