#pragma once

#include "vrml/nodes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#pragma GCC visibility push(default)

namespace meshcast {

class Diagnostics;
class ShapeVisitor;
enum class GroupScope : std::uint8_t;

/// The kinds of properties. Each has a stack of its own in the state.
enum class QvElementKind : std::uint8_t {
    Camera = 0,
    Coordinate3 = 1,
    Light = 2,
    MaterialBinding = 3,
    Material = 4,
    NormalBinding = 5,
    Normal = 6,
    ShapeHints = 7,
    Texture2 = 8,
    Texture2Transformation = 9,
    TextureCoordinate2 = 10,
    Transformation = 11,
    FontStyle = 12,
};
inline constexpr std::size_t kElementKinds = 13;

/// The class of the node that pushed an element; Unknown except for cameras, lights and transforms.
enum class QvElementType : std::int32_t {
    Unknown = 0,
    OrthographicCamera = 1,
    PerspectiveCamera = 2,
    DirectionalLight = 3,
    PointLight = 4,
    SpotLight = 5,
    NoOpTransform = 6,
    MatrixTransform = 7,
    Rotation = 8,
    Scale = 9,
    Transform = 10,
    Translation = 11,
    FontStyle = 12, ///< Never set: font styles are Unknown.
};

/// A property in force. Refers to the node that holds the values.
class QvElement {
public:
    explicit QvElement(const QvNode* node = nullptr,
                       QvElementType nodeType = QvElementType::Unknown)
        : data(node), type(nodeType) {}
    QvElement(const QvElement&) = delete;
    QvElement& operator=(const QvElement&) = delete;
    virtual ~QvElement() = default;

    /// Writes the element's type to standard output, for debugging.
    virtual void print() const;

    std::int32_t depth = -1;   ///< The state's depth when the element was added.
    QvElement* next = nullptr; ///< The element that was on top of the stack before.
    const QvNode* data;        ///< The node that added the element. Not owned.
    QvElementType type;
};

/// The state of one walk: the properties in force, the groups that are open, and the visitor. Any
/// number of walks may go through a scene at the same time, each with its own state.
///
/// For each kind of property there is a stack whose top is the most recent element. Elements are
/// stamped with the depth at which they were added, so that leaving a level drops those of all
/// kinds at once. A short scene can add any number of properties on one level, by using a group
/// many times. To bound memory, on a stack of kMaxElements or more a new element replaces the last
/// one of the same level. This changes nothing but transforms, since of all other kinds only the
/// last element counts.
class QvState {
public:
    /// Shapes go to `shapes`, messages to `diagnostics`. Both must outlive the state.
    QvState(ShapeVisitor& shapes, Diagnostics& diagnostics)
        : shapes_(shapes), diagnostics_(diagnostics) {}
    QvState(const QvState&) = delete;
    QvState& operator=(const QvState&) = delete;
    /// Drops all elements.
    ~QvState();

    static constexpr std::int32_t kMaxElements = 100'000;

    /// Puts an element on top of its stack. The state owns it from now on.
    void addElement(QvElementKind kind, std::unique_ptr<QvElement> element);
    /// Opens a level.
    void push();
    /// Closes a level: drops every element that was added inside it.
    void pop();
    /// Drops the top of a stack that is not empty.
    void popElement(QvElementKind kind);
    /// The top of a stack, or null: no such property is in force.
    const QvElement* getTopElement(QvElementKind kind) const { return stacks[indexOf(kind)]; }
    /// The number of elements on a stack.
    std::int32_t count(QvElementKind kind) const { return counts_[indexOf(kind)]; }

    // The properties in force, null where there is none. Transforms, lights and cameras, of which
    // there are several classes, are elements only.
    const QvCoordinate3* coordinate3() const {
        return top<QvCoordinate3>(QvElementKind::Coordinate3);
    }
    const QvFontStyle* fontStyle() const { return top<QvFontStyle>(QvElementKind::FontStyle); }
    const QvMaterial* material() const { return top<QvMaterial>(QvElementKind::Material); }
    const QvMaterialBinding* materialBinding() const {
        return top<QvMaterialBinding>(QvElementKind::MaterialBinding);
    }
    const QvNormal* normal() const { return top<QvNormal>(QvElementKind::Normal); }
    const QvNormalBinding* normalBinding() const {
        return top<QvNormalBinding>(QvElementKind::NormalBinding);
    }
    const QvShapeHints* shapeHints() const { return top<QvShapeHints>(QvElementKind::ShapeHints); }
    const QvTexture2* texture2() const { return top<QvTexture2>(QvElementKind::Texture2); }
    const QvTextureCoordinate2* textureCoordinate2() const {
        return top<QvTextureCoordinate2>(QvElementKind::TextureCoordinate2);
    }

    /// Opens a group. False when it must be left out: because it is already open (a group may USE
    /// itself), because USE nests groups deeper than kMaxNestingDepth, or because the visitor
    /// leaves it out. The first two are reported, once for each group.
    bool enter(const QvGroup& group, GroupScope scope);
    /// Closes the group that was opened last.
    void leave(const QvGroup& group);

    ShapeVisitor& shapes() { return shapes_; }

    std::int32_t depth = 0;
    std::array<QvElement*, kElementKinds> stacks{};
    /// The number of groups that are open, one inside the other (unknown nodes and inlines do not
    /// count).
    std::int32_t traversalNestingLevel = 0;

private:
    static std::size_t indexOf(QvElementKind kind) { return static_cast<std::size_t>(kind); }
    // Each of these kinds is pushed by one class only.
    template <class Node>
    const Node* top(QvElementKind kind) const {
        const QvElement* const element = getTopElement(kind);
        return element == nullptr ? nullptr : static_cast<const Node*>(element->data);
    }

    ShapeVisitor& shapes_;
    Diagnostics& diagnostics_;
    std::array<std::int32_t, kElementKinds> counts_{};
    std::vector<bool> openGroups_;           ///< By the group's number.
    std::set<const QvGroup*> refusedGroups_; ///< Those that have been reported.
};

} // namespace meshcast

#pragma GCC visibility pop
