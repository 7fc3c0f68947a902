#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace meshcast {

/// The corners of a box of 2 x 2 x 2 around the origin, in the order of its vertices.
inline constexpr std::array<std::array<float, 3>, 8> kBoxCorners = {{{-1, -1, 1},
                                                                     {1, -1, 1},
                                                                     {1, -1, -1},
                                                                     {-1, -1, -1},
                                                                     {-1, 1, 1},
                                                                     {1, 1, 1},
                                                                     {1, 1, -1},
                                                                     {-1, 1, -1}}};

/// Its six faces as a polygon list.
inline constexpr std::array<std::int32_t, 31> kBoxPolygons = {4, 1, 2, 6, 5, //
                                                              4, 3, 4, 8, 7, //
                                                              4, 1, 5, 8, 4, //
                                                              4, 2, 3, 7, 6, //
                                                              4, 2, 1, 4, 3, //
                                                              4, 5, 6, 7, 8, //
                                                              0};

} // namespace meshcast
