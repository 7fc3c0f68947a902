#include "compat/geom/geom.h"
#include "compat/geom/settings.h"
#include "fuzz/finding.h"
#include "fuzz/held_values.h"
#include "fuzz/memory_file.h"
#include "fuzz/object_values.h"
#include "fuzz/random_object.h"
#include "geom_stream/record_reader.h"

#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <span>
#include <string>
#include <vector>

// Writes random objects in both versions, decodes the records, and compares the values.

namespace {

using namespace meshcast::fuzz;

int findings = 0;

/// The settings of the current input; the version is set for each write.
GEOMsettings settings;

void verify(const RandomObject& object) {
    findings = 0;
    const int passed = GEOMcheck_obj(object.object.get(), 0, [](const char*) { ++findings; });
    check(passed != 0 || findings > 0, "verification fails without a finding");
    check(!object.isSound || findings == 0, "verification has findings for a valid object");
}

std::string written(const std::vector<RandomObject>& objects, bool raw, int flags) {
    static const MemoryFile file;
    settings.version = raw ? GEOM_VERSION_RAW : GEOM_VERSION_XDR;
    const GEOMscope scope(settings);
    file.clear();
    for (const RandomObject& object : objects) {
        GEOMwrite_obj(object.object.get(), file.descriptor(), flags);
    }
    return file.contents();
}

void checkDecoded(const std::vector<RandomObject>& objects, const std::string& stream,
                  int version) {
    const auto decoded = geom_stream::decode(std::as_bytes(std::span(stream)));
    if (decoded.error) {
        finding("at byte %s: %s", std::to_string(decoded.error->offset).c_str(),
                decoded.error->message.c_str());
    }
    check(decoded.objects.size() == objects.size(), "objects are missing");
    for (std::size_t i = 0; i < objects.size(); ++i) {
        check(decoded.objects[i].version == version, "another version was written");
        check(ObjectValues(decoded.objects[i]) == ObjectValues(heldValues(*objects[i].object)),
              "a decoded object differs from the one written");
    }
}

/// Checks that the flags of a write clear bits of `data` in the header and change nothing else.
void checkDroppedBits(const std::vector<RandomObject>& objects, std::string stream) {
    constexpr int kDropped = GEOM_HAS_NORMALS | GEOM_HAS_COLORS;
    constexpr std::size_t kLowestByteOfData = 11;
    auto decoded = geom_stream::decode(std::as_bytes(std::span(stream)));
    for (const geom_stream::Object& object : decoded.objects) {
        char& byte = stream[object.offset + kLowestByteOfData];
        byte = static_cast<char>(static_cast<unsigned char>(byte) & ~kDropped);
    }
    check(written(objects, false, kDropped) == stream, "clearing flags changes other bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider choices(data, size);
    settings.verify = choices.ConsumeBool();
    const auto ignore = [](void*, GEOMmessage, const char*) {};
    settings.receiver = choices.ConsumeBool() ? +ignore : nullptr;
    const GEOMscope scope(settings); // until the objects are destroyed

    std::vector<RandomObject> objects;
    do {
        objects.push_back(randomObject(choices));
        verify(objects.back());
    } while (objects.size() < 4 && choices.remaining_bytes() > 0);

    const std::string stream = written(objects, false, 0);
    checkDecoded(objects, stream, 10);
    checkDecoded(objects, written(objects, true, 0), 7);
    checkDroppedBits(objects, stream);

    GEOMobj* const kept = objects.front().object.get();
    ++kept->refs;
    check(GEOMdestroy_obj(kept) == 1, "an object with references was destroyed");
    return 0;
}
