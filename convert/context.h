#pragma once

#include <array>
#include <string_view>

namespace meshcast {

class QvState;

/// A 4 by 4 matrix, row by row, for row vectors: a point p maps to p M, the translation is in
/// row 3.
using Matrix4 = std::array<std::array<float, 4>, 4>;

inline constexpr Matrix4 kIdentity4 = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

/// One level of the transform stack.
struct TransformRecord {
    Matrix4 matrix = kIdentity4;
    void* unused = nullptr;
    TransformRecord* next = nullptr;
};

/// The first record of the stack of the shape being converted; the last is the top. Null between
/// shapes.
extern TransformRecord* TransformStack;

/// M := M B. Every element is a sum from 0 over k = 0 to 3, in float.
void multiply(Matrix4& m, const Matrix4& b);

Matrix4 scaleMatrix(const std::array<float, 3>& factors);
Matrix4 translationMatrix(const std::array<float, 3>& offset);
/// The rotation about an axis, which is normalised first, by `angle` radians.
Matrix4 rotationMatrix(const std::array<float, 3>& axis, float angle);

/// Folds every transform in force, newest first, into the top record's matrix: the innermost
/// transform acts on a point first.
void gatherTransforms(const QvState& state);

/// The top of the stack; null when there is none.
TransformRecord* topRecord();

/// What every shape opens before it converts and closes after: the transform stack, and the
/// transforms in force. Nothing is transformed by them: the stream holds every shape in its own
/// local space.
class ShapeContext {
public:
    /// `state` must outlive the context.
    explicit ShapeContext(const QvState& state);
    ShapeContext(const ShapeContext&) = delete;
    ShapeContext& operator=(const ShapeContext&) = delete;
    ~ShapeContext();

    /// The record that holds the transforms in force; null when there was no memory for it. They
    /// are gathered when it is asked for: a scene may put any number of transforms before each of
    /// its shapes, and no shape asks yet.
    TransformRecord* top();

private:
    const QvState& state_;
    bool isGathered_ = false;
};

/// The tag of the program, set by whoever starts it: 8 characters and a zero.
extern std::array<char, 9> programTag;

/// Takes the program tag, which must be set, as the name that objects get.
void initialiseConversion();

/// The name of objects whose scene gives them none; empty before initialiseConversion.
std::string_view objectName();

} // namespace meshcast
