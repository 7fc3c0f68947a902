#pragma once

#include "io/files.h"
#include "tidy/tidy.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#pragma GCC visibility push(default)

namespace meshcast::tidy {

/// Scenes from the files of one folder and those below it. Each is read once, and all together to
/// kMostInlinedBytes, whether they can be used or not.
class FolderScenes final : public InlineSource {
public:
    explicit FolderScenes(io::Folder root) : root_(std::move(root)) {}

    /// The file that a name means beside the file `fromPath`. Names with a scheme ("http:") mean
    /// none, nor do files outside the folder, wherever links lead.
    std::shared_ptr<const Scene> open(const std::string& name,
                                      const std::string& fromPath) override;

private:
    std::shared_ptr<const Scene> read(const io::Descriptor& file, const std::string& path);

    io::Folder root_;
    std::uint64_t mayStillRead_ = kMostInlinedBytes;
    std::map<std::string, std::shared_ptr<const Scene>> scenes_; ///< By identity.
};

/// What a file is known by, however it is named; empty when there is no such file.
std::string fileIdentity(const std::string& path);

} // namespace meshcast::tidy

#pragma GCC visibility pop
