#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// Records written by hand from docs/stream-format.md. The library must write these bytes, and the
/// decoder must read them.
namespace records {

/// The bytes of a record and the offsets of its items.
struct Bytes {
    std::string str() const { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

    std::vector<std::byte> bytes;
    std::vector<std::size_t> items;
};

/// Reads hexadecimal digits in pairs. A comma ends an item, `zN` is N zero bytes, spaces are
/// ignored.
inline Bytes fromHex(const std::string& text) {
    Bytes result;
    std::size_t item = 0;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t used = 1;
        if (text[i] == ',') {
            result.items.push_back(item);
            item = result.bytes.size();
        } else if (text[i] == 'z') {
            result.bytes.resize(result.bytes.size() + std::stoul(text.substr(i + 1), &used));
            ++used;
        } else if (text[i] != ' ') {
            result.bytes.push_back(
                static_cast<std::byte>(std::stoul(text.substr(i, 2), &used, 16)));
        }
        i += used;
    }
    return result;
}

inline std::string header10(const std::string& data, const std::string& type,
                            const std::string& byte_count) {
    return "474d3634,z4," + data + "," + type + ",z4,z4,z4,z4,z4,z4,z4,z6 " + byte_count +
           ",z4,z4,z4,";
}

inline std::string header7(const std::string& data, const std::string& type,
                           const std::string& byte_count) {
    return "34364d47,02z3," + data + "," + type + ",z4,z4,z4,z4,z4,z4,z4," + byte_count +
           "z6,z4,00,00,";
}

/// The last value of every array; the values before it are zero. An array of pairs that shares its
/// list with one of triples has zeros only.
inline constexpr float vertex = 1;                 // 3f800000
inline constexpr float normal = -1;                // bf800000
inline constexpr float colour = 0.5F;              // 3f000000
inline constexpr float uv = 2;                     // 40000000
inline constexpr float uvw = 3;                    // 40400000
inline constexpr std::int32_t vertex_data = 7;     // 00000007
inline constexpr std::int32_t primitive_data = -8; // fffffff8
inline constexpr float vertex_trans = 0.25F;       // 3e800000

/// Records by kind and version.
inline const std::map<std::string, std::string> by_name{
    {"mesh 10",
     header10("z3 44", "z3 01", "0054") + "z7 02,z7 02,z44 3f800000,z28 40000000,fffffff8,"},
    {"mesh 7", header7("8901z2", "01z3", "8400") +
                   "03z7,01z7,z32 0000803f,z32 000080bf,z32 00004040,z8 07z3,z8 0000803e,"},
    // A property of three bytes, a name and an extent. The list ends after the first of two
    // polygons.
    {"polyhedron 10", "474d3634,z3 0f,z3 ce,z3 02,bf800000,z4,z4,3f800000,z4,z4,z3 01,z7 4c,z3 01,"
                      "z3 06,z3 03,z3 04,010203,00,z3 02,4162,z2,z4,"
                      "z7 02,z7 02,z7 01,z7 01 z7 01 z24,z8 3f800000,z8 3f000000,z8,z8 40400000,"
                      "z3 07,z4 fffffff8,"},
    // Invalid vertex numbers, and a vertex of NaN, infinity and minus zero.
    {"polyhedron 7",
     "34364d47,10z3,z4,02z3,z4,z4,z4,z4,z4,z4,z4,28z7,01z3,"
     "06z3,01z3,02z3,ff,4e,00,00,"
     "01z7,02z7,02z7,02z7 02z7 ffffffffffffffff z8,z12 0000c07f 0000807f 00000080,"},
    {"polytriangle 10",
     header10("z2 01c3", "z3 03", "010b") +
         "z7 01,z7 01,z7 01,"
         "z7 03,z32 3f800000,z32 bf800000,z32 3f000000,z8 z3 07,fffffff8,z8 3e800000,"
         "z7 02,z20 3f800000,z20 3f000000,z7 07,fffffff8,"
         "z7 02,z20 3f800000,z20 3f000000,z7 07,fffffff8,"},
    {"polytriangle 7", header7("z4", "03z3", "1400") + "z8,02z7,z8,z8,01z7,z8 0000803f,"},
    {"sphere 10", header10("z3 20", "z3 04", "0004") + "z7 01,z8 3f800000,"},
    // The radius is 0.01.
    {"sphere 7", header7("8301z2", "04z3", "0a00") +
                     "01z7,z8 0000803f,0ad7233c,z8 000080bf,z8 0000003f,07z3,0000803e,"},
    {"label 10", header10("z3 12", "z3 05", "0012") +
                     "z7 01,z2 408e,z3 03,616200,00,z8 3f800000,z8 40000000,3f000000,z8 3f000000,"
                     "z3 0c,"},
    {"label 7", header7("z4", "05z3", "1900") + "02z7,8190z2,01z3,00,02z3,ff00,z24,z24,z8,"},
};

inline Bytes named(const std::string& name) { return fromHex(by_name.at(name)); }

/// All records, one after another.
inline Bytes all() {
    std::string text;
    for (const auto& [name, hex] : by_name)
        text += hex;
    return fromHex(text);
}

} // namespace records
