#pragma once

#include "tools/vrmltidy/tidy.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <variant>

namespace meshcast::tidy {

/// All bytes of a file or, for "-", of standard input; or why they cannot be had.
std::variant<std::string, std::error_code> readAll(const std::string& path);

/// Writes a text to standard output. Returns why that failed, if it did.
std::error_code writeToOutput(std::string_view text);

/// Writes a text to a file: to another one in the same folder, which takes the name when it is
/// whole. What is no file but a device or a pipe is written as it is.
std::error_code writeToFile(const std::string& path, std::string_view text);

/// Scenes from the files of one folder and those below it.
class FolderScenes final : public InlineSource {
public:
    explicit FolderScenes(std::filesystem::path root) : root_(std::move(root)) {}

    /// The file that a name means beside the file `fromPath`. Names with a scheme ("http:") mean
    /// none, nor do files outside the folder, wherever links lead.
    std::variant<Scene, std::string> open(const std::string& name,
                                          const std::string& fromPath) override;

private:
    std::filesystem::path root_;
};

} // namespace meshcast::tidy
