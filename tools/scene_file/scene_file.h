#pragma once

#include "tidy/tidy.h"

#include <cstddef>
#include <functional>
#include <string>
#include <system_error>
#include <variant>

// What programs that take a scene have in common: where its bytes come from, and how they report.

namespace meshcast {

/// A name for messages: that of the file, or of standard input for "-".
std::string shownName(const std::string& file);

/// The folder that a scene's file is in: that of the process for "-".
std::string folderOf(const std::string& file);

/// All bytes of a file or, for "-", of standard input; or, second, why they cannot be had, as the
/// end of a sentence about the file.
std::variant<std::string, std::string> readSceneFile(const std::string& file);

/// Writes a file in one step (io::writeFile) or, for "-", standard output; `write` gets the
/// descriptor.
std::error_code writeOutput(const std::string& file,
                            const std::function<std::error_code(int descriptor)>& write);

/// Lines for standard error, of which a bad scene can have a million: they are written in pieces.
class ReportLines {
public:
    explicit ReportLines(bool areQuiet) : areQuiet_(areQuiet) {}
    ReportLines(const ReportLines&) = delete;
    ReportLines& operator=(const ReportLines&) = delete;
    ~ReportLines() { flush(); }

    /// FILE:LINE: WHAT
    void add(const tidy::Message& message);
    /// FILE: WHAT, without control characters.
    void add(const std::string& file, const std::string& what);
    /// FILE: 12 repairs; nothing for none.
    void addCount(const std::string& file, std::size_t repairs);
    void flush();

private:
    bool areQuiet_;
    std::string text_;
};

} // namespace meshcast
