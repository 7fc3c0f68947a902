#pragma once

#include "traverse/shape_visitor.h"

#include <cstddef>
#include <cstdint>
#include <glm/mat3x3.hpp>
#include <glm/mat4x4.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::evaluate {

/// The state of the traversal: the product of the current transforms, the names of the groups
/// around, and the address of the anchor around.
class WalkPlace {
public:
    /// Enters a group. Its name may be empty; its scope says what leave() restores.
    void enter(std::string_view name, GroupScope scope);
    /// Leaves the group that was entered last.
    void leave();

    /// Adds a transform, which acts before the current ones.
    void transform(const glm::dmat4& matrix) { matrix_ = matrix_ * matrix; }
    void transformTexture(const glm::dmat3& matrix) { textureMatrix_ = textureMatrix_ * matrix; }
    /// Sets the address of the anchor that was just entered, or nothing.
    void setUrl(const std::optional<std::uint32_t>& url) { url_ = url; }

    const glm::dmat4& matrix() const { return matrix_; }
    const glm::dmat3& textureMatrix() const { return textureMatrix_; }
    const std::optional<std::uint32_t>& url() const { return url_; }
    /// The names of the groups around, joined by `/`, as UTF-8, up to kLongestPath bytes.
    const std::string& path() const { return path_; }
    /// The number of scopes around, not counting one around the whole scene.
    std::size_t scopes() const { return scopes_; }

    /// Every instance stores a path, so its length must be limited.
    static constexpr std::size_t kLongestPath = 256;

private:
    struct Frame {
        GroupScope scope;
        std::size_t pathLength;
        bool isInnerScope;
        std::optional<std::uint32_t> url;
        glm::dmat4 matrix;
        glm::dmat3 textureMatrix;
    };

    std::vector<Frame> frames_;
    glm::dmat4 matrix_{1.0};
    glm::dmat3 textureMatrix_{1.0};
    std::optional<std::uint32_t> url_;
    std::string path_;
    std::size_t scopes_ = 0;
};

} // namespace meshcast::evaluate
