#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace meshcast {

class QvNode;

/// What a property applies to: each kind has a stack of its own in the state.
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

/// Which node class pushed an element. Only cameras, lights and transforms say so.
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
    FontStyle = 12, ///< Named but set by no node: font styles stay Unknown.
};

/// A property in force: refers to the node that holds the values and copies none of them.
class QvElement {
public:
    explicit QvElement(QvNode* node = nullptr, QvElementType nodeType = QvElementType::Unknown)
        : data(node), type(nodeType) {}
    QvElement(const QvElement&) = delete;
    QvElement& operator=(const QvElement&) = delete;
    virtual ~QvElement() = default;

    /// Writes the element's type to standard output, for debugging.
    virtual void print() const;

    std::int32_t depth = -1;   ///< The state's depth when the element was added.
    QvElement* next = nullptr; ///< The element that was on top of the stack before.
    QvNode* data;              ///< The node that added the element. Not owned.
    QvElementType type;
};

/// All properties in force at one point of the walk: for each kind a stack whose top is the most
/// recent element. Elements are stamped with the depth at which they were added, so that leaving a
/// level drops those of all kinds at once.
///
/// A scene of a few lines can add properties without end on one level, by groups that are used
/// again and again. On a stack of kMaxElements or more an element replaces the one that the same
/// level added before it: of all kinds but transforms only the last one counts.
class QvState {
public:
    QvState() = default;
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

    std::int32_t depth = 0;
    std::array<QvElement*, kElementKinds> stacks{};

private:
    static std::size_t indexOf(QvElementKind kind) { return static_cast<std::size_t>(kind); }

    std::array<std::int32_t, kElementKinds> counts_{};
};

/// The node of class `Node` that is on top of a stack, or null. Every kind but lights, cameras and
/// transforms is pushed by one class only.
template <class Node>
Node* topNode(const QvState& state, QvElementKind kind) {
    const QvElement* const element = state.getTopElement(kind);
    return element == nullptr ? nullptr : static_cast<Node*>(element->data);
}

} // namespace meshcast
