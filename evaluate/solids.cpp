#include "evaluate/solids.h"

#include <array>
#include <cmath>
#include <utility>

namespace meshcast::evaluate {

namespace {

constexpr double kTwoPi = 6.283185307179586;

struct Direction {
    double x, z;
};

/// The point on the unit circle at a fraction of the way around, from the back, counterclockwise as
/// seen from above.
Direction around(double fraction) {
    const double angle = kTwoPi * fraction;
    return {-std::sin(angle), -std::cos(angle)};
}

/// The same for one of several steps. The last step gives exactly the first point.
Direction around(std::uint32_t step, std::uint32_t segments) {
    return around(step == segments ? 0 : static_cast<double>(step) / segments);
}

/// Builds a solid part by part.
class SolidBuilder {
public:
    void beginPart(std::uint32_t number) {
        solid_.parts.push_back({number, vertexCount(), 0, indexCount(), 0});
    }

    void endPart() {
        SolidPart& part = solid_.parts.back();
        part.vertexCount = vertexCount() - part.firstVertex;
        part.indexCount = indexCount() - part.firstIndex;
    }

    std::uint32_t vertex(std::array<double, 3> at, std::array<double, 3> normal,
                         std::array<double, 2> uv) {
        const auto f = [](double x) { return static_cast<float>(x); };
        solid_.geometry.positions.push_back({f(at[0]), f(at[1]), f(at[2])});
        solid_.geometry.normals.push_back({f(normal[0]), f(normal[1]), f(normal[2])});
        solid_.geometry.uvs.push_back({f(uv[0]), f(uv[1])});
        return vertexCount() - 1;
    }

    void triangle(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        solid_.geometry.indices.insert(solid_.geometry.indices.end(), {a, b, c});
    }

    /// Adds a disc perpendicular to Y; `up` is 1 for a top and -1 for a bottom.
    void cap(std::uint32_t number, std::uint32_t segments, double up) {
        beginPart(number);
        const std::uint32_t center = vertex({0, up, 0}, {0, up, 0}, {0.5, 0.5});
        for (std::uint32_t i = 0; i < segments; ++i) {
            const auto [x, z] = around(i, segments);
            vertex({x, up, z}, {0, up, 0}, {0.5 + x / 2, 0.5 - up * z / 2});
        }
        for (std::uint32_t i = 0; i < segments; ++i) {
            const std::uint32_t here = center + 1 + i;
            const std::uint32_t next = center + 1 + (i + 1) % segments;
            triangle(center, up > 0 ? here : next, up > 0 ? next : here);
        }
        endPart();
    }

    Solid take() { return std::move(solid_); }

private:
    std::uint32_t vertexCount() const {
        return static_cast<std::uint32_t>(solid_.geometry.positions.size());
    }
    std::uint32_t indexCount() const {
        return static_cast<std::uint32_t>(solid_.geometry.indices.size());
    }

    Solid solid_;
};

} // namespace

Solid makeCube() {
    struct Side {
        std::array<double, 3> normal, right, up;
    };
    constexpr std::array<Side, 6> kSides = {{
        {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
        {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},
        {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
        {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
        {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}},
        {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
    }};
    SolidBuilder builder;
    for (std::uint32_t number = 0; number < kSides.size(); ++number) {
        const auto& [normal, right, up] = kSides[number];
        builder.beginPart(number);
        std::uint32_t first = 0;
        for (std::uint32_t corner = 0; corner < 4; ++corner) {
            const double s = corner == 1 || corner == 2 ? 1 : 0;
            const double t = corner >= 2 ? 1 : 0;
            std::array<double, 3> at{};
            for (std::size_t i = 0; i < 3; ++i) {
                at[i] = normal[i] + (2 * s - 1) * right[i] + (2 * t - 1) * up[i];
            }
            first = builder.vertex(at, normal, {s, t}) - corner;
        }
        builder.triangle(first, first + 1, first + 2);
        builder.triangle(first, first + 2, first + 3);
        builder.endPart();
    }
    return builder.take();
}

Solid makeSphere(std::uint32_t segments) {
    SolidBuilder builder;
    builder.beginPart(0);
    const std::uint32_t rings = segments / 2 < 2 ? 2 : segments / 2;
    // At a pole each segment has its own vertex, in the middle of its part of the image.
    for (std::uint32_t ring = 0; ring <= rings; ++ring) {
        const double t = static_cast<double>(ring) / rings;
        const bool isPole = ring == 0 || ring == rings;
        const double y = isPole ? 2 * t - 1 : -std::cos(kTwoPi / 2 * t);
        const double radius = isPole ? 0 : std::sin(kTwoPi / 2 * t);
        const std::uint32_t steps = isPole ? segments : segments + 1;
        for (std::uint32_t i = 0; i < steps; ++i) {
            const auto [x, z] = around(i, segments);
            const std::array<double, 3> at = {radius * x, y, radius * z};
            builder.vertex(at, at, {(i + (isPole ? 0.5 : 0)) / segments, t});
        }
    }
    std::uint32_t below = 0;
    for (std::uint32_t ring = 0; ring < rings; ++ring) {
        const std::uint32_t above = below + (ring == 0 ? segments : segments + 1);
        for (std::uint32_t i = 0; i < segments; ++i) {
            if (ring > 0) {
                builder.triangle(below + i, below + i + 1, above + i);
            }
            if (ring + 1 < rings) {
                builder.triangle(ring == 0 ? below + i : below + i + 1, above + i + 1, above + i);
            }
        }
        below = above;
    }
    builder.endPart();
    return builder.take();
}

Solid makeCone(std::uint32_t segments, bool hasSides, bool hasBottom) {
    SolidBuilder builder;
    if (hasSides) {
        builder.beginPart(0);
        // The sides have slope 2, so their normals have slope 1/2.
        const double length = std::sqrt(5.0);
        const auto normal = [length](const Direction& out) {
            return std::array<double, 3>{2 * out.x / length, 1 / length, 2 * out.z / length};
        };
        std::uint32_t first = 0;
        for (std::uint32_t i = 0; i <= segments; ++i) {
            const Direction out = around(i, segments);
            first = builder.vertex({out.x, -1, out.z}, normal(out),
                                   {static_cast<double>(i) / segments, 0}) -
                    i;
        }
        for (std::uint32_t i = 0; i < segments; ++i) {
            const double middle = (i + 0.5) / segments;
            const std::uint32_t tip =
                builder.vertex({0, 1, 0}, normal(around(middle)), {middle, 1});
            builder.triangle(first + i, first + i + 1, tip);
        }
        builder.endPart();
    }
    if (hasBottom) {
        builder.cap(1, segments, -1);
    }
    return builder.take();
}

Solid makeCylinder(std::uint32_t segments, bool hasSides, bool hasTop, bool hasBottom) {
    SolidBuilder builder;
    if (hasSides) {
        builder.beginPart(0);
        std::uint32_t below = 0;
        for (std::uint32_t i = 0; i <= segments; ++i) {
            const auto [x, z] = around(i, segments);
            const double s = static_cast<double>(i) / segments;
            below = builder.vertex({x, -1, z}, {x, 0, z}, {s, 0});
            const std::uint32_t above = builder.vertex({x, 1, z}, {x, 0, z}, {s, 1});
            if (i > 0) {
                builder.triangle(below - 2, below, above - 2);
                builder.triangle(above - 2, below, above);
            }
        }
        builder.endPart();
    }
    if (hasTop) {
        builder.cap(1, segments, 1);
    }
    if (hasBottom) {
        builder.cap(2, segments, -1);
    }
    return builder.take();
}

} // namespace meshcast::evaluate
