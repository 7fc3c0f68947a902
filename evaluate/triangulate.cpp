#include "evaluate/triangulate.h"

#include "evaluate/convex.h"

#include <GL/glu.h>
#include <array>
#include <deque>
#include <new>
#include <utility>

// GLU gets each corner as a pointer to its number and returns these pointers. It asks for new ones
// where corners coincide or edges cross. No exception may pass through its C code, so a callback
// that runs out of memory sets a flag, which is checked after the call.

namespace meshcast::evaluate {

class Triangulator::Tessellator {
public:
    Tessellator() : glu_(gluNewTess()) {
        if (glu_ == nullptr) {
            throw std::bad_alloc();
        }
        gluTessProperty(glu_.get(), GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
        setCallback<GLvoid (*)(void*, void*)>(GLU_TESS_VERTEX_DATA, takeVertex);
        setCallback<GLvoid (*)(GLdouble*, void**, GLfloat*, void**, void*)>(GLU_TESS_COMBINE_DATA,
                                                                            combine);
        setCallback<GLvoid (*)(GLenum, void*)>(GLU_TESS_ERROR_DATA, takeError);
        // With an edge flag callback, GLU produces only triangles, no fans and strips.
        setCallback<GLvoid (*)(GLboolean)>(GLU_TESS_EDGE_FLAG, [](GLboolean /*isEdge*/) {});
    }
    ~Tessellator() = default;
    Tessellator(const Tessellator&) = delete;
    Tessellator& operator=(const Tessellator&) = delete;

    bool run(std::span<const glm::dvec3> corners, std::span<const std::uint32_t> counts,
             const glm::dvec3& normal, Triangulation& result) {
        result_.clear();
        numbers_.clear();
        hasFailed_ = isOutOfMemory_ = false;
        firstMixed_ = static_cast<std::uint32_t>(corners.size());
        gluTessNormal(glu_.get(), normal.x, normal.y, normal.z);
        gluTessBeginPolygon(glu_.get(), this);
        std::size_t next = 0;
        for (const std::uint32_t count : counts) {
            gluTessBeginContour(glu_.get());
            for (const std::size_t end = next + count; next < end; ++next) {
                std::array<GLdouble, 3> at = {corners[next].x, corners[next].y, corners[next].z};
                gluTessVertex(glu_.get(), at.data(), numbered(static_cast<std::uint32_t>(next)));
            }
            gluTessEndContour(glu_.get());
        }
        gluTessEndPolygon(glu_.get());
        if (isOutOfMemory_) {
            throw std::bad_alloc();
        }
        std::swap(result, result_);
        return !hasFailed_ && result.triangles.size() % 3 == 0;
    }

private:
    template <class Callback>
    void setCallback(GLenum which, Callback callback) {
        gluTessCallback(glu_.get(), which, reinterpret_cast<void (*)()>(callback));
    }

    /// Stores a number at a stable address.
    void* numbered(std::uint32_t number) { return &numbers_.emplace_back(number); }

    static std::uint32_t numberAt(const void* place) {
        return *static_cast<const std::uint32_t*>(place);
    }

    template <class Work>
    void guarded(Work work) {
        try {
            work();
        } catch (const std::bad_alloc&) {
            isOutOfMemory_ = true;
        }
    }

    static void takeVertex(void* corner, void* self) {
        auto& tessellator = *static_cast<Tessellator*>(self);
        tessellator.guarded([&] { tessellator.result_.triangles.push_back(numberAt(corner)); });
    }

    // GLU declares the weights without const. NOLINTNEXTLINE(readability-non-const-parameter)
    static void combine(GLdouble* /*at*/, void** corners, GLfloat* weights, void** out,
                        void* self) {
        auto& tessellator = *static_cast<Tessellator*>(self);
        *out = corners[0];
        tessellator.guarded([&] {
            MixedCorner mixed;
            mixed.corners.fill(numberAt(corners[0]));
            for (std::size_t i = 0; i < 4; ++i) {
                if (corners[i] != nullptr && weights[i] > 0) {
                    mixed.corners[i] = numberAt(corners[i]);
                    mixed.weights[i] = weights[i];
                }
            }
            auto& all = tessellator.result_.mixed;
            all.push_back(mixed);
            *out = tessellator.numbered(tessellator.firstMixed_ +
                                        static_cast<std::uint32_t>(all.size() - 1));
        });
    }

    static void takeError(GLenum error, void* self) {
        auto& tessellator = *static_cast<Tessellator*>(self);
        tessellator.hasFailed_ = true;
        tessellator.isOutOfMemory_ |= error == GLU_OUT_OF_MEMORY;
    }

    struct Delete {
        void operator()(GLUtesselator* glu) const { gluDeleteTess(glu); }
    };

    std::unique_ptr<GLUtesselator, Delete> glu_;
    Triangulation result_;
    std::deque<std::uint32_t> numbers_;
    std::uint32_t firstMixed_ = 0;
    bool hasFailed_ = false;
    bool isOutOfMemory_ = false;
};

Triangulator::Triangulator() : tessellator_(std::make_unique<Tessellator>()) {}

Triangulator::~Triangulator() = default;

bool Triangulator::mayTessellate(std::span<const glm::dvec3> corners, const glm::dvec3& normal) {
    const std::uint64_t pairs = static_cast<std::uint64_t>(corners.size()) * corners.size();
    if (pairs > kMostWork - work_) {
        return false;
    }
    work_ += pairs;
    // Each crossing takes memory. Real faces have few.
    const std::size_t mostCrossings = 4 * corners.size();
    return countCrossings(corners, PlaneView(normal), mostCrossings) < mostCrossings;
}

bool Triangulator::tessellate(std::span<const glm::dvec3> corners,
                              std::span<const std::uint32_t> counts, const glm::dvec3& normal,
                              Triangulation& result) {
    if (tessellator_->run(corners, counts, normal, result)) {
        return true;
    }
    result.clear();
    return false;
}

bool Triangulator::triangulate(std::span<const glm::dvec3> corners, const glm::dvec3& normal,
                               Triangulation& result) {
    result.clear();
    const auto count = static_cast<std::uint32_t>(corners.size());
    const bool isSimple = count <= 3 || isConvex(corners, PlaneView(normal));
    if (!isSimple && mayTessellate(corners, normal) &&
        tessellate(corners, {&count, 1}, normal, result)) {
        return true;
    }
    for (std::uint32_t i = 2; i < count; ++i) {
        result.triangles.insert(result.triangles.end(), {0, i - 1, i});
    }
    return isSimple;
}

bool Triangulator::triangulateOutlines(std::span<const glm::dvec3> corners,
                                       std::span<const std::uint32_t> counts,
                                       Triangulation& result) {
    result.clear();
    return tessellate(corners, counts, {0, 0, 1}, result);
}

} // namespace meshcast::evaluate
