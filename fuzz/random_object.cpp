#include "fuzz/random_object.h"

#include "compat/geom/parts.h"
#include "fuzz/finding.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace meshcast::fuzz {

namespace {

using Floats = std::vector<float>;

/// The flags that announce arrays. If there is no such array, zeros are written.
constexpr std::uint32_t kPromises = GEOM_HAS_NORMALS | GEOM_HAS_COLORS | GEOM_HAS_UVS |
                                    GEOM_HAS_UVWS | GEOM_HAS_LABEL_DATA | GEOM_HAS_PRIMITIVE_DATA |
                                    GEOM_HAS_VERTEX_DATA | GEOM_HAS_VERTEX_TRANS;

template <class T>
T* heapCopy(const std::vector<T>& values) {
    void* const block = std::malloc((values.size() + 1) * sizeof(T));
    check(block != nullptr, "no memory");
    std::copy(values.begin(), values.end(), static_cast<T*>(block));
    return static_cast<T*>(block);
}

template <class T, int N>
std::vector<T> held(const GEOMlist<T, N>* list) {
    return list == nullptr ? std::vector<T>()
                           : std::vector<T>(list->data, list->data + list->used * N);
}

/// Compares bits, so that NaN equals itself.
template <class T>
bool areSame(const std::vector<T>& a, const std::vector<T>& b) {
    static_assert(sizeof(T) == sizeof(std::uint32_t));
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](T x, T y) {
        return std::bit_cast<std::uint32_t>(x) == std::bit_cast<std::uint32_t>(y);
    });
}

class Maker {
public:
    explicit Maker(FuzzedDataProvider& choices)
        : choices_(choices), isSound_(choices.ConsumeBool()) {}

    RandomObject make() {
        switch (choices_.ConsumeIntegralInRange<int>(GEOM_MESH, GEOM_LABEL)) {
        case GEOM_MESH:
            makeMesh();
            break;
        case GEOM_POLYHEDRON:
            makePolyhedron();
            break;
        case GEOM_POLYTRIANGLE:
            makePolytriangle();
            break;
        case GEOM_SPHERE:
            makeSpheres();
            break;
        default:
            makeLabels();
            break;
        }
        addHeader();
        return {std::move(object_), isSound_};
    }

private:
    // ---- values

    /// The fuzzer chooses only the first values of an array.
    static constexpr int kChosen = 64;

    bool maybe() { return choices_.ConsumeBool(); }
    std::int64_t smallCount() { return choices_.ConsumeIntegralInRange<std::int64_t>(0, 7); }
    /// Mostly small; sometimes so large that arrays cross the end of a piece of the stream.
    std::int64_t vertexCount() {
        const auto count = choices_.ConsumeIntegralInRange<std::int64_t>(0, 31);
        return count < 28 ? count % 8 : 100 * (count - 20);
    }
    /// The expected count, or any count if the object may be invalid.
    std::int64_t countLike(std::int64_t expected) {
        return isSound_ ? expected : choices_.ConsumeIntegralInRange<std::int64_t>(-1, 9);
    }
    float number() {
        constexpr int kTameRange = 40;
        return isSound_
                   ? static_cast<float>(choices_.ConsumeIntegralInRange(-kTameRange, kTameRange)) /
                         4
                   : std::bit_cast<float>(choices_.ConsumeIntegral<std::uint32_t>());
    }
    float share() {
        return isSound_ ? static_cast<float>(choices_.ConsumeIntegral<std::uint8_t>()) / 255
                        : number();
    }
    Floats numbers(std::int64_t count, float (Maker::*one)() = &Maker::number) {
        Floats values(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
        std::generate(values.begin(), values.end(), [&, i = 0]() mutable {
            return ++i < kChosen ? (this->*one)() : 1 / static_cast<float>(i);
        });
        return values;
    }
    Floats sizes(std::int64_t count) {
        Floats values = numbers(count);
        std::transform(values.begin(), values.end(), values.begin(),
                       [](float value) { return std::fabs(value); });
        return values;
    }
    template <class T>
    std::vector<T> integers(std::int64_t count) {
        std::vector<T> values(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
        std::generate(values.begin(), values.end(), [&, i = 0]() mutable {
            return ++i < kChosen ? choices_.ConsumeIntegral<T>() : static_cast<T>(i);
        });
        return values;
    }

    // ---- additions, each checked

    /// Calls add(array, flag) and checks that the result was appended to the list. An object
    /// without such a list must refuse the array.
    template <class Given, class T, int N, class Add>
    void add(const GEOMlist<T, N>* list, const std::vector<Given>& given,
             const std::vector<T>& result, Add addArray) {
        std::vector<T> expected = held(list);
        if (list != nullptr) {
            expected.insert(expected.end(), result.begin(), result.end());
        }
        Given* const copy = heapCopy(given);
        const bool taken = maybe();
        addArray(copy, taken ? GEOM_TAKE : GEOM_COPY);
        if (!taken) {
            std::free(copy);
        }
        check(areSame(held(list), expected), "elements were not appended to a list");
    }

    void addVertices(std::int64_t n) {
        const Floats given = numbers(3 * n);
        add(geom::partOf(*object_).vertices, given, given,
            [&](const float* array, int flag) { GEOMadd_vertices(object_.get(), array, n, flag); });
    }
    void addNormals(std::int64_t n) {
        const Floats given = numbers(3 * n);
        add(geom::partOf(*object_).normals, given, given,
            [&](const float* array, int flag) { GEOMadd_normals(object_.get(), array, n, flag); });
    }
    void addUvs(std::int64_t n) {
        const Floats given = numbers(2 * n);
        add(geom::partOf(*object_).uvs, given, given,
            [&](const float* array, int flag) { GEOMadd_uvs(object_.get(), array, n, flag); });
    }
    void addColors(std::int64_t n) {
        std::vector<GEOMpacked_color> given;
        Floats floats;
        for (std::int64_t i = 0; i < n; ++i) {
            const auto bytes = integers<std::uint8_t>(4);
            given.push_back({bytes[0], bytes[1], bytes[2], bytes[3]});
            for (std::size_t k = 1; k < bytes.size(); ++k) {
                floats.push_back(static_cast<float>(bytes[k] / 255.0));
            }
        }
        add(geom::partOf(*object_).colors, given, floats,
            [&](const GEOMpacked_color* array, int flag) {
                GEOMadd_colors(object_.get(), array, n, flag);
            });
    }
    void addVertexData(std::int64_t n) {
        const auto given = integers<std::int32_t>(n);
        add(geom::partOf(*object_).vertex_data, given, given,
            [&](const std::int32_t* array, int flag) {
                GEOMadd_vertex_data(object_.get(), array, n, flag);
            });
    }
    void addVertexTrans(std::int64_t n) {
        const Floats given = numbers(n, &Maker::share);
        add(geom::partOf(*object_).vertex_trans, given, given, [&](const float* array, int flag) {
            GEOMadd_vertex_trans(object_.get(), array, n, flag);
        });
    }
    void addRadii(std::int64_t n) {
        const Floats given = sizes(n);
        const GEOMscalar_list* const list =
            object_->type == GEOM_SPHERE ? &object_->sphere.radii : nullptr;
        add(list, given, given,
            [&](const float* array, int flag) { GEOMadd_radii(object_.get(), array, n, flag); });
    }

    /// Adds some vertex attributes, in batches of the given sizes.
    void addData(const std::vector<std::int64_t>& batches, bool uvsToo = true) {
        using Adder = void (Maker::*)(std::int64_t);
        constexpr Adder kAdders[] = {&Maker::addNormals, &Maker::addColors, &Maker::addVertexData,
                                     &Maker::addVertexTrans, &Maker::addUvs};
        for (const Adder adder : kAdders) {
            if (!maybe() || (adder == &Maker::addUvs && !uvsToo)) {
                continue;
            }
            for (const std::int64_t n : batches) {
                (this->*adder)(countLike(n));
            }
        }
    }

    std::vector<std::int64_t> addVerticesInBatches() {
        std::vector<std::int64_t> batches;
        while (batches.size() < 3 && maybe()) {
            batches.push_back(vertexCount());
            const std::int64_t n = batches.back();
            if (isSound_ || maybe()) {
                addVertices(n);
                continue;
            }
            const Floats vertices = numbers(3 * n);
            const Floats normals = numbers(3 * n);
            GEOMadd_vertices_with_data(object_.get(), vertices.data(), normals.data(), nullptr, n,
                                       GEOM_COPY);
        }
        return batches;
    }

    // ---- kinds

    void makeMesh() {
        const std::int64_t u = smallCount();
        const std::int64_t v = smallCount();
        const bool hasVertices = isSound_ || maybe();
        const Floats vertices = numbers(hasVertices ? 3 * u * v : 0);
        const bool taken = maybe();
        float* const copy = hasVertices ? heapCopy(vertices) : nullptr;
        object_.reset(GEOMcreate_mesh(nullptr, copy, u, v, taken ? GEOM_TAKE : GEOM_COPY));
        if (!taken) {
            std::free(copy);
        }
        check(areSame(held(&object_->mesh.vertices), vertices), "a mesh has wrong vertices");
        isSound_ = isSound_ && (hasVertices || u * v == 0);
        addData({u * v});
        if (maybe()) {
            generateNormals(maybe() ? 1 : 0);
        }
    }

    void makePolyhedron() {
        object_.reset(GEOMcreate_obj(GEOM_POLYHEDRON, nullptr));
        const std::vector<std::int64_t> batches = addVerticesInBatches();
        while (maybe() && choices_.remaining_bytes() > 0) {
            addPolygons();
        }
        const int normals = choices_.ConsumeIntegralInRange(0, 2);
        // Generating facet normals gives every corner its own vertex, but drops texture
        // coordinates.
        addData(batches, normals != 2 || !isSound_);
        if (normals != 0) {
            generateNormals(normals - 1);
        }
    }

    /// The number of a vertex, mostly a valid one.
    std::int32_t corner() {
        const auto choice = choices_.ConsumeIntegralInRange<std::int32_t>(0, 31);
        if (choice == 31) {
            return choices_.ConsumeIntegral<std::int32_t>();
        }
        const auto count = static_cast<std::int32_t>(object_->polyhedron.vertices.used);
        return count == 0 ? choice : choice % count + 1;
    }

    void addPolygons() {
        std::vector<std::int32_t> list;
        for (std::int64_t count = smallCount(); count > 0; --count) {
            const auto corners = static_cast<std::int32_t>(smallCount() + 1);
            list.push_back(corners);
            for (std::int32_t i = 0; i < corners; ++i) {
                list.push_back(corner());
            }
        }
        list.push_back(maybe() ? 0 : -1);

        std::vector<std::int64_t> expected = polygonEntries();
        expected.insert(expected.end(), list.begin(), list.end() - 1);
        std::int32_t* const copy = heapCopy(list);
        const bool taken = maybe();
        GEOMadd_polygons(object_.get(), copy, choices_.ConsumeIntegral<std::uint32_t>(),
                         taken ? GEOM_TAKE : GEOM_COPY);
        if (!taken) {
            std::free(copy);
        }
        check(polygonEntries() == expected, "polygons were not appended to a polygon list");
    }

    void makePolytriangle() {
        object_.reset(GEOMcreate_obj(GEOM_POLYTRIANGLE, nullptr));
        GEOMpolytriangle& all = object_->polytriangle;
        const bool colored = maybe();
        if (!isSound_) {
            object_->flags |= choices_.ConsumeIntegral<std::uint32_t>() & kPromises;
        }
        while (maybe() && choices_.remaining_bytes() > 0) {
            const std::int64_t n = vertexCount();
            // All parts of a valid object have the arrays that its flags announce.
            if (maybe() && !(isSound_ && colored)) {
                addVertices(n);
            } else {
                addPolyline(n, isSound_ ? colored : maybe());
            }
        }
        if (!isSound_) {
            addData({smallCount()});
            for (std::int64_t i = 0; i < all.strips; ++i) {
                fill(geom::stripOf(all, i));
            }
            for (std::int64_t i = 0; i < all.lines; ++i) {
                fill(geom::polylineOf(all, i));
            }
            fill(geom::segmentsOf(all));
        }
    }

    void addPolyline(std::int64_t n, bool colored) {
        const Floats vertices = numbers(3 * n);
        const Floats colors = numbers(colored ? 3 * n : 0, &Maker::share);
        const std::int64_t before = object_->polytriangle.lines;
        float* const vertexCopy = heapCopy(vertices);
        float* const colorCopy = colored ? heapCopy(colors) : nullptr;
        const bool taken = maybe();
        GEOMadd_polyline(object_.get(), vertexCopy, colorCopy, n, taken ? GEOM_TAKE : GEOM_COPY);
        if (!taken) {
            std::free(vertexCopy);
            std::free(colorCopy);
        }
        const GEOMpolytriangle& all = object_->polytriangle;
        if (all.lines != before) {
            check(areSame(held(&all.line_vertices[before]), vertices) &&
                      (!colored || areSame(held(&all.line_colors[before]), colors)),
                  "a polyline has wrong vertices or colours");
        } else {
            check(n == 0 || !colored, "a polyline was not added");
        }
    }

    /// Adds elements to the lists for which the library has no functions.
    void fill(const geom::Part& part) {
        const auto extend = [this]<class T, int N>(GEOMlist<T, N>* list) {
            if (list == nullptr || !maybe()) {
                return;
            }
            std::vector<T> values = held(list);
            const auto more = integers<std::int32_t>(N * smallCount());
            std::transform(more.begin(), more.end(), std::back_inserter(values),
                           [](std::int32_t bits) { return std::bit_cast<T>(bits); });
            std::free(list->data);
            const auto n = static_cast<std::int64_t>(values.size()) / N;
            *list = {n, n, heapCopy(values)};
        };
        extend(part.vertices);
        extend(part.normals);
        extend(part.colors);
        extend(part.uvs);
        extend(part.vertex_data);
        extend(part.primitive_data);
        extend(part.vertex_trans);
    }

    void makeSpheres() {
        const std::int64_t n = vertexCount();
        const Floats centers = numbers(3 * n);
        const bool haveRadii = maybe();
        const Floats radii = sizes(n);
        object_.reset(GEOMcreate_sphere(nullptr, centers.data(), haveRadii ? radii.data() : nullptr,
                                        nullptr, nullptr, n, GEOM_COPY));
        check(areSame(held(&object_->sphere.centers), centers) &&
                  (!haveRadii || areSame(held(&object_->sphere.radii), radii)),
              "a sphere object has wrong centres or radii");
        if (!isSound_ && maybe()) {
            addRadii(countLike(n));
        }
        addData({n}, !isSound_);
    }

    void makeLabels() {
        object_.reset(GEOMcreate_label(nullptr, choices_.ConsumeIntegral<std::uint32_t>()));
        const bool colored = maybe();
        while (maybe() && choices_.remaining_bytes() > 0) {
            std::string text = choices_.ConsumeRandomLengthString(20);
            text.resize(std::min(text.find('\0'), text.size()));
            const Floats position = numbers(3);
            const Floats offset = numbers(3);
            const Floats color = numbers(3, &Maker::share);
            const float height = std::fabs(number());
            GEOMadd_label(object_.get(), text.c_str(), position.data(),
                          maybe() ? offset.data() : nullptr, height,
                          (isSound_ ? colored : maybe()) ? color.data() : nullptr,
                          choices_.ConsumeIntegralInRange(-1, 3));
            const GEOMlabels& labels = object_->label;
            check(labels.texts.data[labels.texts.used - 1] == text, "a label has a wrong text");
        }
        if (!isSound_) {
            addVertices(smallCount());
            addData({smallCount()});
        }
    }

    // ---- normals

    void generateNormals(int mode) {
        const bool had = (object_->flags & GEOM_HAS_NORMALS) != 0;
        const Floats vertices = held(geom::partOf(*object_).vertices);
        const std::vector<std::int64_t> polygons = polygonEntries();
        GEOMgen_normals(object_.get(), mode);
        const bool has = (object_->flags & GEOM_HAS_NORMALS) != 0;
        if (had || !has) {
            check(has || (object_->type == GEOM_MESH && !isSound_), "no normals were generated");
            return;
        }
        if (object_->type == GEOM_POLYHEDRON && mode == 1) {
            checkCorners(vertices, polygons);
        }
        checkNormals();
    }

    /// In a valid object, normals have length 1, or 0 if there is no direction.
    void checkNormals() {
        const geom::Part part = geom::partOf(*object_);
        const Floats normals = held(part.normals);
        check(!isSound_ || part.normals->used == part.vertices->used,
              "the numbers of normals and vertices differ");
        for (std::size_t i = 0; isSound_ && i < normals.size(); i += 3) {
            const float length = std::hypot(normals[i], normals[i + 1], normals[i + 2]);
            check(length == 0 || std::fabs(length - 1) < 1e-4F,
                  "the length of a normal is neither 0 nor 1");
        }
    }

    std::vector<std::int64_t> polygonEntries() const {
        if (object_->type != GEOM_POLYHEDRON) {
            return {};
        }
        const GEOMpolygon_list& list = object_->polyhedron.polygons;
        return {list.data, list.data + list.polygons + list.indices};
    }

    /// Every corner must have its own copy of its vertex, or zeros if its index was invalid.
    void checkCorners(const Floats& before, const std::vector<std::int64_t>& polygons) {
        const Floats vertices = held(geom::partOf(*object_).vertices);
        Floats expected;
        std::vector<std::int64_t> numbered = polygons;
        for (std::size_t i = 0; i < polygons.size();) {
            const auto end = i + static_cast<std::size_t>(polygons[i]);
            while (i++ < end) {
                const std::int64_t corner = polygons[i];
                const bool isThere = corner >= 1 && corner <= std::ssize(before) / 3;
                for (std::int64_t k = 0; k < 3; ++k) {
                    expected.push_back(
                        isThere ? before[static_cast<std::size_t>(3 * (corner - 1) + k)] : 0);
                }
                numbered[i] = std::ssize(expected) / 3;
            }
        }
        check(areSame(vertices, expected), "the corners' vertices are not those they named");
        check(polygonEntries() == numbered, "the corners are not numbered in order");
    }

    // ---- the header

    void addHeader() {
        if (maybe()) {
            Floats extent = numbers(6);
            if (isSound_) {
                std::sort(extent.begin(), extent.end());
            }
            std::copy(extent.begin(), extent.end(), object_->extent);
            object_->has_extent = 1;
        }
        while (object_->nvals < 4 && maybe()) {
            const auto kind = choices_.ConsumeIntegralInRange<std::uint32_t>(1, 4);
            const auto value = choices_.ConsumeIntegral<std::uint32_t>();
            std::uint32_t found = 0;
            const int had = GEOMget_property(object_.get(), kind, &found);
            const std::uint32_t first = had != 0 ? found : value;
            GEOMadd_property(object_.get(), kind, value);
            check(GEOMget_property(object_.get(), kind, &found) == 1 && found == first,
                  "a property is not found");
        }
        object_->name = text();
        object_->attribute = text();
        if (!isSound_) {
            object_->flags |= choices_.ConsumeIntegral<std::uint32_t>() & kPromises;
        }
    }

    char* text() {
        std::vector<char> text = integers<char>(smallCount());
        std::replace(text.begin(), text.end(), '\0', ' ');
        text.push_back('\0');
        return maybe() ? heapCopy(text) : nullptr;
    }

    FuzzedDataProvider& choices_;
    bool isSound_;
    OwnedObject object_;
};

} // namespace

RandomObject randomObject(FuzzedDataProvider& choices) { return Maker(choices).make(); }

} // namespace meshcast::fuzz
