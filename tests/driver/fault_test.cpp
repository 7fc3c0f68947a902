#include "geom_stream/record_reader.h"
#include "tests/driver/scene_files.h"
#include "tests/support/faults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <regex>
#include <span>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

int meshcastMain(); // The main function of the program, renamed by a compile definition.

// Tests the whole program with failing allocations, reads and writes.
namespace {

/// Returns all bytes of an open file and closes it.
std::string takeContents(int file) {
    std::string bytes(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(file, bytes.data(), bytes.size(), 0), std::ssize(bytes));
    close(file);
    return bytes;
}

struct Result {
    int status;
    std::string output;
    std::string messages;
};

/// Runs the program on a scene in a child process, with `prepare` called before it and `finish`
/// after.
Result run(
    const std::string& scene, const std::function<void()>& prepare,
    const std::function<void()>& finish = [] {}) {
    const int files[] = {memfd_create("in", 0), memfd_create("out", 0), memfd_create("err", 0)};
    EXPECT_EQ(pwrite(files[0], scene.data(), scene.size(), 0), std::ssize(scene));
    std::fflush(nullptr); // Otherwise the child writes buffered output to the file.
    const pid_t child = fork();
    if (child == 0) {
        for (const int descriptor : {0, 1, 2}) {
            dup2(files[descriptor], descriptor);
        }
        prepare();
        const int status = meshcastMain();
        finish();
        std::exit(status); // Not _exit, so that the sanitizers check for leaks.
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    close(files[0]);
    return {status, takeContents(files[1]), takeContents(files[2])};
}

std::size_t wholeRecords(const std::string& stream) {
    const geom_stream::DecodeResult result = geom_stream::decode(std::as_bytes(std::span(stream)));
    EXPECT_FALSE(result.error) << result.error->message << " at " << result.error->offset;
    return result.objects.size();
}

/// Whether a stream is the complete one without one of its records.
bool lacksOneRecord(const std::string& stream, const std::string& whole) {
    const auto rest = std::mismatch(stream.begin(), stream.end(), whole.begin(), whole.end()).first;
    return wholeRecords(stream) + 1 == wholeRecords(whole) &&
           whole.ends_with(std::string(rest, stream.end()));
}

// If the allocation of its output stream fails, an object is left out. Any other failure ends the
// program after a complete record, or has no effect on the output.
TEST(Faults, FailedAllocationsLoseOneRecordOrEndTheProgram) {
    constexpr int kObjects = 13;
    const std::regex last("((compat/geom/(create|norm|prop) line \\d+, \\d+ bytes"
                          "(, old ptr 0x[0-9a-f]+)?\nGEOM fatal error: [\\w': ]*alloc[\\w ]*)|"
                          "(GEOM fatal error: out of memory))\n$");
    const std::string scene = contents(std::filesystem::path(SCENES) / "good-every-path.wrl");
    for (const bool fromThereOn : {false, true}) {
        if (fromThereOn) {
            setenv("KRA_GEOM_WRITE_V2", "", 1);
            setenv("KRA_GEOM_VERIFY", "", 1);
        }
        all_later_fail = fromThereOn;
        const auto failing = [](int first) { return [first] { allocationToFail = first; }; };
        const Result whole = run(scene, [] {});
        ASSERT_EQ(whole.status, 0) << whole.messages;
        EXPECT_EQ(wholeRecords(whole.output), kObjects);
        const std::string counted = run(scene, failing(INT_MAX), [] {
                                        std::fprintf(stderr, "%d", INT_MAX - allocationToFail);
                                    }).messages;
        const int allocations = std::stoi(counted.substr(whole.messages.size()));
        EXPECT_GT(allocations, 200);
        int leftOut = 0;
        for (int n = 1; n <= allocations; ++n) {
            const Result failed = run(scene, failing(n));
            std::smatch words;
            if (failed.status == 0) {
                ASSERT_EQ(failed.messages, whole.messages) << n;
                if (failed.output != whole.output) {
                    ++leftOut;
                    ASSERT_TRUE(lacksOneRecord(failed.output, whole.output)) << n;
                }
            } else {
                ASSERT_EQ(failed.status, W_EXITCODE(EXIT_FAILURE, 0)) << n << failed.messages;
                ASSERT_TRUE(std::regex_search(failed.messages, words, last)) << failed.messages;
                ASSERT_TRUE(whole.messages.starts_with(words.prefix().str())) << failed.messages;
                ASSERT_TRUE(whole.output.starts_with(failed.output)) << n;
                wholeRecords(failed.output);
            }
        }
        // When all later allocations fail too, the next one ends the program.
        EXPECT_EQ(leftOut, fromThereOn ? 0 : kObjects);
    }
}

TEST(Faults, FailedWritesLoseOnlyTheirRecord) {
    constexpr int kObjects = 6; // Each is written by a single call.
    const std::string scene = "#VRML V1.0 ascii\nGroup { Cube { } Cone { } Cylinder { } }";
    const Result whole = run(scene, [] {});
    ASSERT_EQ(wholeRecords(whole.output), kObjects);
    const auto failing = [&](int first, int count, IoFault fault) {
        const Result failed = run(scene, [&] {
            writeFaults.assign(static_cast<std::size_t>(first), {8192});
            writeFaults.insert(writeFaults.end(), static_cast<std::size_t>(count), fault);
        });
        EXPECT_EQ(failed.status, 0);
        EXPECT_EQ(failed.messages, "");
        return failed.output;
    };
    for (int n = 0; n < kObjects; ++n) {
        for (const IoFault goesOn : {IoFault{-1, EINTR}, {-1, EAGAIN}, {1}}) {
            EXPECT_EQ(failing(n, 50, goesOn), whole.output);
        }
        for (const IoFault fails : {IoFault{-1, ENOSPC}, {-1, EPIPE}, {-1, EIO}, {0}}) {
            EXPECT_EQ(wholeRecords(failing(n, 1, fails)), kObjects - 1);
            EXPECT_EQ(wholeRecords(failing(n, 50, fails)), n);
        }
    }
}

TEST(Faults, InterruptedReadsAreRetried) {
    const std::string scene = "#VRML V1.0 ascii\nCube { width 12345 }";
    const Result whole = run(scene, [] {});
    const auto reading = [&](std::deque<IoFault> faults) {
        return run(scene, [&] { readFaults = std::move(faults); });
    };
    EXPECT_EQ(reading({{20}, {-1, EINTR}, {13}, {-1, EAGAIN}, {1}}).output, whole.output);
    EXPECT_EQ(reading({{20}, {-1, EIO}}).messages,
              "VRML read error: Expected '{'; got EOF\n\tOccurred at line   2\n");
}

} // namespace
