#include "tidy/folder_scenes.h"

#include "tidy/inflate.h"
#include "vrml/characters.h"
#include "vrml/number_scan.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <utility>

namespace meshcast::tidy {

namespace {

std::string identityOf(const struct stat& status) {
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

/// Decodes `%20` and the like.
std::string percentDecoded(const std::string& name) {
    std::string decoded;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '%' && i + 2 < name.size() && isHexDigit(name[i + 1]) &&
            isHexDigit(name[i + 2])) {
            const std::string digits = "0x" + name.substr(i + 1, 2);
            decoded += static_cast<char>(scanMagnitude(digits.c_str()).magnitude);
            i += 2;
        } else {
            decoded += name[i];
        }
    }
    return decoded;
}

bool hasScheme(const std::string& name) {
    const auto end = std::find_if_not(name.begin(), name.end(), [](char c) {
        return (isNameCharacter(c) && c != '_') || c == '+' || c == '-' || c == '.';
    });
    // A single letter before the colon is a drive, which does not exist here.
    return end != name.end() && *end == ':';
}

std::shared_ptr<const InlineSource::Scene> failed(std::string why) {
    return std::make_shared<InlineSource::Scene>(
        InlineSource::Scene{{}, {}, {}, {}, std::move(why)});
}

} // namespace

std::string fileIdentity(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? identityOf(status) : "";
}

std::shared_ptr<const InlineSource::Scene> FolderScenes::read(const io::Descriptor& file,
                                                              const std::string& path) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0) {
        return failed(io::lastError().message());
    }
    const std::string identity = identityOf(status);
    if (const auto known = scenes_.find(identity); known != scenes_.end()) {
        return known->second;
    }
    Scene scene{path, identity, {}, {}, {}};
    auto bytes = io::readWhole(file.number(), mayStillRead_);
    if (const auto* const error = std::get_if<std::error_code>(&bytes)) {
        const bool isTooLong = *error == std::errc::file_too_large;
        scene.failure =
            isTooLong ? "the inlined files exceed " + std::to_string(kMostInlinedBytes) + " bytes"
                      : error->message();
        mayStillRead_ = isTooLong ? 0 : mayStillRead_;
    } else {
        scene.bytes = std::get<std::string>(std::move(bytes));
        mayStillRead_ -= scene.bytes.size();
        if (isCompressed(scene.bytes)) {
            scene.repair = "inflated gzip-compressed data";
            const std::uint64_t most = std::min(mostInflated(scene.bytes.size()), mayStillRead_);
            const std::string failure = inflate(scene.bytes, most);
            scene.failure = failure.empty() ? "" : "it " + failure;
            mayStillRead_ -= std::min<std::uint64_t>(mayStillRead_, scene.bytes.size());
        }
    }
    return scenes_[identity] = std::make_shared<const Scene>(std::move(scene));
}

std::shared_ptr<const InlineSource::Scene> FolderScenes::open(const std::string& name,
                                                              const std::string& fromPath) {
    if (hasScheme(name)) {
        return failed("it is not the name of a file");
    }
    const std::filesystem::path folder = std::filesystem::path(fromPath).parent_path();
    const std::string written = name.substr(0, name.find('#'));
    std::string why;
    for (const std::string& file : {written, percentDecoded(written)}) {
        const std::filesystem::path path = folder / file;
        std::error_code error;
        // Resolves links, so that the name can be compared with that of the root. openFile checks
        // that the file is inside the root.
        const std::filesystem::path absolute =
            std::filesystem::canonical(path.has_parent_path() ? path.parent_path() : ".", error) /
            path.filename();
        if (error) {
            why = why.empty() ? error.message() : why;
            continue;
        }
        const std::string relative =
            std::filesystem::path(absolute).lexically_relative(root_.path()).string();
        auto opened = root_.openFile(relative);
        if (const auto* const found = std::get_if<io::Descriptor>(&opened)) {
            return read(*found, path.lexically_normal().string());
        }
        why = why.empty() ? std::get<std::string>(opened) : why;
    }
    return failed(why);
}

} // namespace meshcast::tidy
