#pragma once

#include "compat/geom/list.h"
#include "compat/geom/memory.h"

// The places that allocate memory for objects. Users search for these messages and line numbers in
// old logs, so they are fixed here and do not change when the code moves.

namespace geom::createSites {

inline constexpr const char* kModule = "compat/geom/create";

inline constexpr AllocationSite kObject{kModule, 304,
                                        "GEOMcreate_obj: malloc failed creating object"};

inline constexpr GrowthSites kVertices{{kModule, 1824, "malloc failed adding vertices"},
                                       {kModule, 1832, "malloc failed reallocing vertices"}};
inline constexpr GrowthSites kColors{{kModule, 1708, "malloc failed adding vertices"},
                                     {kModule, 1716, "malloc failed reallocing vertices"}};
inline constexpr GrowthSites kScalars{{kModule, 1746, "malloc failed adding scalars"},
                                      {kModule, 1754, "malloc failed reallocing scalars"}};
inline constexpr GrowthSites kInts{{kModule, 1785, "malloc failed adding ints"},
                                   {kModule, 1793, "malloc failed reallocing ints"}};
inline constexpr GrowthSites kLabelTexts{{kModule, 2053, "can't alloc label list"},
                                         {kModule, 2062, "can't realloc label list"}};
inline constexpr AllocationSite kLabelText{kModule, 2049, "can't allocate label name"};

inline constexpr GrowthSites kPolygons{{kModule, 1615, "malloc fails allocating plist"},
                                       {kModule, 1917, "reallocing plist fails"}};

/// The list of one new strip or polyline.
inline constexpr AllocationSite kFreshVertices{kModule, 1673, "malloc fails allocating vert list"};

/// The arrays of one list per polyline.
inline constexpr GrowthSites kLineVertices{{kModule, 924, "alloc fails on pl v list"},
                                           {kModule, 912, "realloc fails on pl vert list"}};
inline constexpr GrowthSites kLineColors{{kModule, 926, "alloc fails on pl c list"},
                                         {kModule, 915, "realloc fails on pl color list"}};
inline constexpr GrowthSites kLineVertexData{{kModule, 928, "alloc fails on pl vd list"},
                                             {kModule, 918, "realloc fails on pl vdata list"}};
inline constexpr GrowthSites kLinePrimitiveData{{kModule, 930, "alloc fails on pl pp list"},
                                                {kModule, 921, "realloc fails on pl pdata list"}};

/// The arrays of one list per strip. These have no lines to keep, so they show those of this table.
inline constexpr GrowthSites kStripVertices{{kModule, __LINE__, "alloc fails on ptri v list"},
                                            {kModule, __LINE__, "realloc fails on ptri vert list"}};
inline constexpr GrowthSites kStripNormals{
    {kModule, __LINE__, "alloc fails on ptri n list"},
    {kModule, __LINE__, "realloc fails on ptri normal list"}};
inline constexpr GrowthSites kStripColors{{kModule, __LINE__, "alloc fails on ptri c list"},
                                          {kModule, __LINE__, "realloc fails on ptri color list"}};
inline constexpr GrowthSites kStripUvs{{kModule, __LINE__, "alloc fails on ptri vt list"},
                                       {kModule, __LINE__, "realloc fails on ptri uv list"}};
inline constexpr GrowthSites kStripVertexData{
    {kModule, __LINE__, "alloc fails on ptri vd list"},
    {kModule, __LINE__, "realloc fails on ptri vdata list"}};
inline constexpr GrowthSites kStripPrimitiveData{
    {kModule, __LINE__, "alloc fails on ptri pd list"},
    {kModule, __LINE__, "realloc fails on ptri pdata list"}};
/// Kept: for the first strip the message is that of the texture coordinates, "vt".
inline constexpr GrowthSites kStripVertexTrans{
    {kModule, __LINE__, "alloc fails on ptri vt list"},
    {kModule, __LINE__, "realloc fails on ptri vtrans list"}};

} // namespace geom::createSites
