#include "tools/scene_dump/scene_dump.h"
#include "tools/vrmltidy/files.h"
#include "tools/vrmltidy/reporter.h"
#include "tools/vrmltidy/tidy.h"
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
            text_.append(file).append(": ").append(tidy::counted(repairs, "repair")).append("\n");
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
    std::cerr << "vrmltidy: " << file << ": " << message << '\n';
    return kNotRepaired;
}

/// The folder outside of which no file is read.
std::filesystem::path rootOf(const CommandLine& line, std::error_code& error) {
    std::filesystem::path root = line.root;
    if (root.empty() && line.file != "-") {
        root = std::filesystem::path(line.file).parent_path();
    }
    return std::filesystem::canonical(root.empty() ? "." : root, error);
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
    auto input = tidy::readAll(line.file);
    if (const auto* const error = std::get_if<std::error_code>(&input)) {
        return fail(shown, "cannot be read: " + error->message());
    }

    tidy::Options options;
    options.path = shown;
    Lines lines(line.quiet);
    options.report = [&lines](const tidy::Message& message) { lines.add(message); };
    std::optional<tidy::FolderScenes> scenes;
    if (line.inlines) {
        std::error_code error;
        options.identity = std::filesystem::weakly_canonical(line.file, error).string();
        scenes.emplace(rootOf(line, error));
        if (error) {
            return fail(line.root, "cannot be used as a root: " + error.message());
        }
        options.inlines = &*scenes;
    }

    tidy::Result result = tidy::tidy(std::get<std::string>(std::move(input)), options);
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
    const std::error_code error = line.output.empty()
                                      ? tidy::writeToOutput(*result.text)
                                      : tidy::writeToFile(line.output, *result.text);
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
                   "Write to this file instead of standard output; it appears "
                   "when it is whole")
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
        // Help and version come this way too, with status 0.
        return app.exit(error) == 0 ? kConverted : kWrongUsage;
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
