#pragma once

#include "tidy/tidy.h"

#include <cstddef>
#include <functional>
#include <string>
#include <system_error>
#include <variant>

// Code shared by the programs that read scenes: reading files, writing files and reporting.

namespace meshcast {

/// The name of a file in messages; "<stdin>" for "-".
std::string shownName(const std::string& file);

/// The folder of a scene's file; the current directory for "-".
std::string folderOf(const std::string& file);

/// Reads a file or, for "-", standard input. On failure the second alternative holds the reason, as
/// the rest of a sentence that begins with the file's name ("cannot be read: ...").
std::variant<std::string, std::string> readSceneFile(const std::string& file);

/// Writes a file atomically (io::writeFile) or, for "-", standard output. `write` is called with
/// the descriptor.
std::error_code writeOutput(const std::string& file,
                            const std::function<std::error_code(int descriptor)>& write);

/// Buffers messages for standard error, because a bad scene can cause a million of them.
class ReportLines {
public:
    explicit ReportLines(bool areQuiet) : areQuiet_(areQuiet) {}
    ReportLines(const ReportLines&) = delete;
    ReportLines& operator=(const ReportLines&) = delete;
    ~ReportLines() { flush(); }

    /// Adds the line "FILE:LINE: WHAT".
    void add(const tidy::Message& message);
    /// Adds the line "FILE: WHAT", without control characters.
    void add(const std::string& file, const std::string& what);
    /// Adds the line "FILE: 12 repairs", or nothing if there were none.
    void addCount(const std::string& file, std::size_t repairs);
    void flush();

private:
    bool areQuiet_;
    std::string text_;
};

} // namespace meshcast
