#pragma once

#include <array>

namespace meshcast {

class QvState;

/// A 4 by 4 matrix, row by row, for row vectors: a point p maps to p M, the translation is in
/// row 3.
using Matrix4 = std::array<std::array<float, 4>, 4>;

/// One level of the transform stack.
struct TransformRecord {
    Matrix4 matrix = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    void* unused = nullptr;
    TransformRecord* next = nullptr;
};

/// The transform stack of the shape being converted. It is not applied: the stream holds every
/// shape in its own local space.
class ShapeContext {
public:
    /// `state` must outlive the context.
    explicit ShapeContext(const QvState& state) : state_(state) {}
    ShapeContext(const ShapeContext&) = delete;
    ShapeContext& operator=(const ShapeContext&) = delete;
    ~ShapeContext();

    /// The last record of the stack. Its matrix is the product of all transforms in force, newest
    /// first: the innermost transform acts on a point first. Null when memory runs out. The product
    /// is computed on the first call only, since a scene may put any number of transforms before
    /// each shape and no shape needs it yet.
    TransformRecord* top();

private:
    const QvState& state_;
    TransformRecord* TransformStack = nullptr; ///< The first record.
};

} // namespace meshcast
