#include "tools/scene_file/scene_file.h"

#include "io/files.h"
#include "tidy/report.h"

#include <filesystem>
#include <iostream>
#include <unistd.h>
#include <utility>

namespace meshcast {

namespace {

constexpr std::size_t kPieceSize = std::size_t(64) * 1024;

} // namespace

std::string shownName(const std::string& file) { return file == "-" ? "<stdin>" : file; }

std::string folderOf(const std::string& file) {
    const std::string folder =
        file == "-" ? "" : std::filesystem::path(file).parent_path().string();
    return folder.empty() ? "." : folder;
}

std::variant<std::string, std::string> readSceneFile(const std::string& file) {
    auto bytes = file == "-" ? io::readWhole(STDIN_FILENO, tidy::kLargestScene)
                             : io::readFile(file, tidy::kLargestScene);
    using Result = std::variant<std::string, std::string>;
    if (const auto* const error = std::get_if<std::error_code>(&bytes)) {
        return Result(std::in_place_index<1>,
                      *error == std::errc::file_too_large
                          ? "is longer than " + std::to_string(tidy::kLargestScene) + " bytes"
                          : "cannot be read: " + error->message());
    }
    return Result(std::in_place_index<0>, std::get<std::string>(std::move(bytes)));
}

std::error_code writeOutput(const std::string& file,
                            const std::function<std::error_code(int descriptor)>& write) {
    return file == "-" ? io::writeStandardOutput(write) : io::writeFile(file, write);
}

void ReportLines::add(const tidy::Message& message) {
    if (areQuiet_) {
        return;
    }
    text_.append(message.file).append(":").append(std::to_string(message.line)).append(": ");
    text_.append(message.what).append("\n");
    if (text_.size() > kPieceSize) {
        flush();
    }
}

void ReportLines::add(const std::string& file, const std::string& what) {
    if (!areQuiet_) {
        text_.append(tidy::printable(file)).append(": ").append(tidy::printable(what)).append("\n");
    }
}

void ReportLines::addCount(const std::string& file, std::size_t repairs) {
    if (repairs != 0) {
        add(file, tidy::counted(repairs, "repair"));
    }
    flush();
}

void ReportLines::flush() {
    std::cerr << text_ << std::flush;
    text_.clear();
}

} // namespace meshcast
