#pragma once

#include "io/files.h"
#include "tidy/tidy.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#pragma GCC visibility push(default)

namespace meshcast::tidy {

/// Scenes from the files of one folder and its subfolders. Each file is read once. All files
/// together may have kMostInlinedBytes; files that turn out to be unusable count too.
class FolderScenes final : public InlineSource {
public:
    explicit FolderScenes(io::Folder root) : root_(std::move(root)) {}

    /// The file that `name` means, relative to the file `fromPath`. Fails for names with a scheme
    /// ("http:") and for files outside the folder, also when symbolic links lead there.
    std::shared_ptr<const Scene> open(const std::string& name,
                                      const std::string& fromPath) override;

private:
    std::shared_ptr<const Scene> read(const io::Descriptor& file, const std::string& path);

    io::Folder root_;
    std::uint64_t mayStillRead_ = kMostInlinedBytes;
    std::map<std::string, std::shared_ptr<const Scene>> scenes_; ///< By identity.
};

/// A key that is equal for all names of one file; empty when there is no such file.
std::string fileIdentity(const std::string& path);

} // namespace meshcast::tidy

#pragma GCC visibility pop
