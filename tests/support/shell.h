#pragma once

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

/// The result of a shell command.
struct ShellOutcome {
    int status = -1; ///< -1 when a signal ended it.
    std::string out, err;
};

/// Runs a shell command in a folder.
inline ShellOutcome runShell(const std::string& command, const std::filesystem::path& folder) {
    const std::filesystem::path errors =
        std::filesystem::temp_directory_path() / ("shell." + std::to_string(getpid()) + ".err");
    const std::string whole =
        "cd '" + folder.string() + "' && { " + command + "; } 2>'" + errors.string() + "'";
    ShellOutcome outcome;
    std::FILE* const pipe = popen(whole.c_str(), "r");
    if (pipe == nullptr) {
        return outcome;
    }
    std::array<char, 65536> block{};
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), pipe)) {
        outcome.out.append(block.data(), size);
    }
    const int status = pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::ifstream file(errors, std::ios::binary);
    outcome.err.assign(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove(errors);
    return outcome;
}
