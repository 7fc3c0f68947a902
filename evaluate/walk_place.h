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

/// Where the walk stands: the transforms in force, each multiplied into a matrix when it comes into
/// force, the names on the way, and the anchor around it.
class WalkPlace {
public:
    /// Enters a group of a name, perhaps empty, whose scope ends some properties with it.
    void enter(std::string_view name, GroupScope scope);
    /// Leaves the group that was entered last.
    void leave();

    /// Puts a transform in force, which acts before those that are.
    void transform(const glm::dmat4& matrix) { matrix_ = matrix_ * matrix; }
    void transformTexture(const glm::dmat3& matrix) { textureMatrix_ = textureMatrix_ * matrix; }
    /// The address of the anchor that was just entered, if it counts.
    void setUrl(const std::optional<std::uint32_t>& url) { url_ = url; }

    const glm::dmat4& matrix() const { return matrix_; }
    const glm::dmat3& textureMatrix() const { return textureMatrix_; }
    const std::optional<std::uint32_t>& url() const { return url_; }
    /// The names on the way, joined by `/`, as UTF-8, up to kLongestPath bytes.
    const std::string& path() const { return path_; }
    /// The number of scopes around, but for one that is around the whole scene.
    std::size_t scopes() const { return scopes_; }

    /// Every instance gets a path, so that it must not be as long as the scene.
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
