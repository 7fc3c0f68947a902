#include "geom_stream/record_reader.h"
#include "tests/driver/scene_files.h"
#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

// Tests the program as a process: pipes, environment and status.
namespace {

std::string outputOf(const std::string& command) {
    std::string output;
    std::FILE* const pipe = popen(command.c_str(), "r");
    std::array<char, 4096> block{};
    for (std::size_t count = 1; count != 0;) {
        count = std::fread(block.data(), 1, block.size(), pipe);
        output.append(block.data(), count);
    }
    const int status = pclose(pipe);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command;
    return output;
}

std::vector<geom_stream::Object> objects(const std::string& stream) {
    geom_stream::DecodeResult result = geom_stream::decode(std::as_bytes(std::span(stream)));
    EXPECT_FALSE(result.error) << result.error->message;
    return std::move(result.objects);
}

const std::string kCube = "printf '#VRML V1.0 ascii\\nCube { }' | ";

/// The running program, with pipes for its input and output that stay open.
struct Process {
    explicit Process(const std::string& scene) {
        std::array<int, 2> input{};
        std::array<int, 2> output{};
        EXPECT_EQ(pipe(input.data()) + pipe(output.data()), 0);
        id = fork();
        if (id == 0) {
            dup2(input[0], 0);
            dup2(output[1], 1);
            close(input[1]);
            close(output[0]);
            for (const int inherited : {SIGPIPE, SIGINT, SIGTERM}) {
                signal(inherited, SIG_DFL);
            }
            execl(MESHCAST, MESHCAST, static_cast<char*>(nullptr));
            _exit(127);
        }
        close(input[0]);
        close(output[1]);
        in = input[1];
        out = output[0];
        for (const char& c : scene) { // Byte by byte.
            EXPECT_EQ(write(in, &c, 1), 1);
        }
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        close(in);
        close(out);
    }

    int waitForStatus() const {
        int status = -1;
        alarm(60); // Ends the test if the filter does not end.
        EXPECT_EQ(waitpid(id, &status, 0), id);
        alarm(0);
        return status;
    }

    pid_t id;
    int in;
    int out;
};

TEST(Filter, EndsWhileItsWriterKeepsThePipeOpen) {
    const Process filter("#VRML V1.0 ascii\nSeparator { Cube { } }");
    EXPECT_EQ(filter.waitForStatus(), 0);
    std::string stream(4096, '\0');
    stream.resize(static_cast<std::size_t>(
        std::max<ssize_t>(read(filter.out, stream.data(), stream.size()), 0)));
    EXPECT_EQ(objects(stream).size(), 1U);
}

TEST(Filter, EndsAtOnceOnSignalsAndClosedPipes) {
    for (const int signal : {SIGPIPE, SIGINT, SIGTERM}) {
        Process filter("#VRML V1.0 ascii\n" + meshcast::doubled("Cube { }", 30));
        char c = 0;
        EXPECT_EQ(read(filter.out, &c, 1), 1); // It is writing a billion cubes.
        if (signal == SIGPIPE) {
            close(std::exchange(filter.out, -1));
        } else {
            kill(filter.id, signal);
        }
        EXPECT_EQ(filter.waitForStatus(), W_EXITCODE(0, signal));
    }
}

TEST(Filter, WritesTheOlderVersionOnRequest) {
    const auto newer = objects(outputOf(kCube + MESHCAST));
    const auto older = objects(outputOf(kCube + "KRA_GEOM_WRITE_V2= " MESHCAST));
    ASSERT_EQ(newer.size() + older.size(), 2U);
    EXPECT_EQ(newer[0].version, 10);
    EXPECT_EQ(older[0].version, 7);
    EXPECT_EQ(newer[0].polyhedron().normals, older[0].polyhedron().normals);
    EXPECT_EQ(newer[0].polyhedron().polygonList, older[0].polyhedron().polygonList);
}

TEST(Filter, VerifiesOnRequestAtWriteAndDestroy) {
    const std::string bad = "printf '#VRML V1.0 ascii\\nSphere { radius -1 }' | ";
    const std::string finding = "GEOMcheck_obj error: radii array entry: -1.000000 is out of the "
                                "range: 0.000000 - 999999999999999983222784.000000\n";
    EXPECT_EQ(outputOf(bad + MESHCAST " 2>&1 >/dev/null"), "");
    EXPECT_EQ(outputOf(bad + "KRA_GEOM_VERIFY= " MESHCAST " 2>&1 >/dev/null"), finding + finding);
}

TEST(Filter, WriteErrorsAndArgumentsChangeNothing) {
    EXPECT_EQ(outputOf(kCube + MESHCAST " >/dev/full 2>&1"), "");
    EXPECT_EQ(outputOf(kCube + MESHCAST " 2>&1 >&-"), "");
    EXPECT_EQ(outputOf(MESHCAST " <&- 2>&1"), outputOf(MESHCAST " </dev/null 2>&1"));
    EXPECT_EQ(outputOf(kCube + MESHCAST " --help nonsense"), outputOf(kCube + MESHCAST));
}

} // namespace
