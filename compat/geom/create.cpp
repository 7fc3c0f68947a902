// Creates and destroys objects, and adds data per vertex.

#include "compat/geom/create_sites.h"
#include "compat/geom/geom.h"
#include "compat/geom/list.h"
#include "compat/geom/memory.h"
#include "compat/geom/parts.h"
#include "compat/geom/polytri.h"
#include "compat/geom/settings.h"

#include <algorithm>
#include <cstring>

namespace {

namespace sites = geom::createSites;

// Batches grow a list to exactly what is needed; single elements leave room for more.
std::int64_t extensionFor(std::int64_t n) { return n == 1 ? geom::kHeadroom : n; }

template <class T, int N>
void append(GEOMlist<T, N>& list, const T* source, std::int64_t n, int flag,
            const geom::GrowthSites& growth) {
    geom::append(list, source, n, extensionFor(n), flag, growth);
}

// Vertex data and vertex trans differ only in type, flag bit and messages.
template <class T>
void addExtra(GEOMobj& obj, GEOMlist<T, 1>* list, const T* source, std::int64_t n, int flag,
              std::uint32_t bit, const geom::GrowthSites& growth, const char* polytriangleMessage) {
    if (obj.type == GEOM_POLYTRIANGLE) {
        geom::refuse(polytriangleMessage, source, flag);
        return;
    }
    if (obj.type == GEOM_LABEL) {
        geom::refuse("Don't support primitive data for labels", source, flag);
        return;
    }
    // Kept: the bit is set for null arrays and unknown kinds too. Readers of such objects rely on
    // it.
    obj.flags |= bit;
    if (list != nullptr)
        append(*list, source, n, flag, growth);
    else
        geom::drop(source, flag);
}

// In a polytriangle, vertices form a new strip; every other kind has one list for them.
bool addVertices(GEOMobj& obj, const float* vertices, std::int64_t n, int flag) {
    if (obj.type == GEOM_POLYTRIANGLE) {
        geom::addStrip(obj, vertices, n, flag);
        return true;
    }
    GEOMvector_list* list = geom::partOf(obj).vertices;
    if (list == nullptr)
        return false;
    append(*list, vertices, n, flag, sites::kVertices);
    return true;
}

void clearKind(GEOMobj& obj) {
    geom::clearPart(geom::partOf(obj));
    switch (obj.type) {
    case GEOM_POLYHEDRON:
        geom::release(obj.polyhedron.polygons.data);
        break;
    case GEOM_POLYTRIANGLE:
        geom::clearPolytriangle(obj.polytriangle);
        break;
    case GEOM_SPHERE:
        geom::clear(obj.sphere.radii);
        break;
    case GEOM_LABEL:
        for (std::int64_t i = 0; i < obj.label.texts.used; ++i)
            geom::release(obj.label.texts.data[i]);
        geom::clear(obj.label.texts);
        geom::clear(obj.label.offsets);
        geom::clear(obj.label.heights);
        geom::clear(obj.label.label_data);
        break;
    default:
        break;
    }
}

} // namespace

GEOMobj* GEOMcreate_obj(std::uint32_t type, const float* extent) {
    auto* obj = static_cast<GEOMobj*>(geom::allocateZeroed(1, sizeof(GEOMobj), sites::kObject));
    obj->type = type;
    obj->refs = 1;
    if (extent != nullptr) {
        std::memcpy(obj->extent, extent, sizeof obj->extent);
        obj->has_extent = 1;
    }
    return obj;
}

GEOMobj* GEOMcreate_mesh(const float* extent, const float* vertices, std::int64_t u, std::int64_t v,
                         int flag) {
    GEOMobj* obj = GEOMcreate_obj(GEOM_MESH, extent);
    obj->mesh.u = u;
    obj->mesh.v = v;
    if (vertices == nullptr)
        GEOMerror("GEOMcreate_mesh: invalid null vertex list");
    else
        addVertices(*obj, vertices, geom::multiplyCounts(u, v), flag);
    return obj;
}

GEOMobj* GEOMcreate_sphere(const float* extent, const float* centers, const float* radii,
                           const float* normals, const GEOMpacked_color* colors, std::int64_t n,
                           int flag) {
    GEOMobj* obj = GEOMcreate_obj(GEOM_SPHERE, extent);
    if (centers == nullptr)
        GEOMerror("GEOMcreate_sphere: invalid null vertex list");
    else
        addVertices(*obj, centers, n, flag);
    if (radii != nullptr)
        GEOMadd_radii(obj, radii, n, flag);
    GEOMadd_colors(obj, colors, n, flag);
    GEOMadd_normals(obj, normals, n, flag);
    return obj;
}

int GEOMdestroy_obj(GEOMobj* obj) {
    if (obj == nullptr || --obj->refs > 0)
        return 1;
    if (geom::verifyWanted())
        GEOMcheck_obj(obj, 0, nullptr);
    clearKind(*obj);
    geom::release(obj->name);
    geom::release(obj->attribute);
    geom::release(obj->vals);
    geom::release(obj);
    return 0;
}

void GEOMadd_vertices(GEOMobj* obj, const float* vertices, std::int64_t n, int flag) {
    if (!addVertices(*obj, vertices, n, flag))
        geom::refuse("GEOMadd_vertices: can't add vertices to object type", vertices, flag);
}

void GEOMlend_vertices(GEOMobj* obj, const float* vertices, std::int64_t n) {
    GEOMvector_list& list = obj->polyhedron.vertices;
    if (obj->type != GEOM_POLYHEDRON || list.capacity != 0 || vertices == nullptr || n <= 0) {
        GEOMadd_vertices(obj, vertices, n, GEOM_COPY);
        return;
    }
    geom::adopt(list, vertices, n);
    list.capacity = GEOM_LENT;
}

void GEOMadd_vertices_with_data(GEOMobj* obj, const float* vertices, const float* normals,
                                const GEOMpacked_color* colors, std::int64_t n, int flag) {
    GEOMadd_vertices(obj, vertices, n, flag);
    const geom::Part part = geom::partOf(*obj);
    if (part.normals != nullptr)
        GEOMadd_normals(obj, normals, n, flag);
    else
        geom::drop(normals, flag);
    if (part.colors != nullptr)
        GEOMadd_colors(obj, colors, n, flag);
    else
        geom::drop(colors, flag);
}

void GEOMadd_normals(GEOMobj* obj, const float* normals, std::int64_t n, int flag) {
    GEOMvector_list* list = geom::partOf(*obj).normals;
    if (list == nullptr) {
        geom::refuse("GEOMadd_normals: can't add normals to object type specified", normals, flag);
        return;
    }
    if (normals == nullptr)
        return;
    append(*list, normals, n, flag, sites::kVertices);
    obj->flags |= GEOM_HAS_NORMALS;
}

void GEOMadd_colors(GEOMobj* obj, const GEOMpacked_color* colors, std::int64_t n, int flag) {
    GEOMvector_list* list = geom::partOf(*obj).colors;
    if (list == nullptr) {
        geom::refuse("GEOMadd_colors: can't add colors to object type specified", colors, flag);
        return;
    }
    if (colors == nullptr)
        return;
    n = std::max<std::int64_t>(n, 0);
    geom::makeRoom(*list, n, extensionFor(n), sites::kColors);
    constexpr double full = 255.0;
    float* out = list->data + list->used * 3;
    for (std::int64_t i = 0; i < n; ++i) {
        *out++ = static_cast<float>(colors[i].red / full);
        *out++ = static_cast<float>(colors[i].green / full);
        *out++ = static_cast<float>(colors[i].blue / full);
    }
    list->used += n;
    obj->flags |= GEOM_HAS_COLORS;
    geom::drop(colors, flag);
}

void GEOMadd_uvs(GEOMobj* obj, const float* uvs, std::int64_t n, int flag) {
    GEOMscalar_list* list = geom::partOf(*obj).uvs;
    if (list == nullptr) {
        geom::refuse("GEOMadd_uvs: can't add u-v to object type", uvs, flag);
        return;
    }
    // The headroom of a single pair is 100 floats, not 100 pairs.
    const std::int64_t floats = geom::multiplyCounts(n, 2);
    const std::int64_t extension = n == 1 ? geom::kHeadroom : floats;
    geom::append(*list, uvs, floats, extension, flag, sites::kScalars);
    if (n > 0)
        obj->flags |= GEOM_HAS_UVS;
}

void GEOMadd_radii(GEOMobj* obj, const float* radii, std::int64_t n, int flag) {
    if (obj->type != GEOM_SPHERE) {
        geom::refuse("GEOMadd_radii: can't add radii to obj type", radii, flag);
        return;
    }
    append(obj->sphere.radii, radii, n, flag, sites::kScalars);
}

void GEOMadd_vertex_data(GEOMobj* obj, const std::int32_t* data, std::int64_t n, int flag) {
    addExtra(*obj, geom::partOf(*obj).vertex_data, data, n, flag, GEOM_HAS_VERTEX_DATA,
             sites::kInts, "GEOMadd_vertex_data: use GEOMadd_polytriangle_vertex_data\n");
}

void GEOMadd_vertex_trans(GEOMobj* obj, const float* trans, std::int64_t n, int flag) {
    addExtra(*obj, geom::partOf(*obj).vertex_trans, trans, n, flag, GEOM_HAS_VERTEX_TRANS,
             sites::kScalars, "GEOMadd_vertex_trans:use GEOMadd_polytriangle_vertex_trans\n");
}
