#include "tests/compat/geom/harness.h"

#include <gtest/gtest.h>

#include <barrier>
#include <cstdlib>
#include <thread>

namespace {

// The records of many invalid objects, followed by the messages about them. Threads that share
// `pace` make each object at the same time.
std::string faulty(int version, bool verify, std::barrier<>& pace) {
    std::string messages;
    GEOMsettings settings = noting(messages);
    settings.version = version;
    settings.verify = verify;
    const GEOMscope scope(settings);
    return written([&](int fd) {
               for (int i = 0; i < 100; ++i) {
                   pace.arrive_and_wait();
                   const Object obj = make(GEOM_MESH);
                   GEOMadd_radii(obj.get(), nullptr, 0, 0);
                   obj->mesh.v = -i;
                   GEOMwrite_obj(obj.get(), fd, 0);
               }
           }) +
           messages;
}

std::string faultyAlone(int version, bool verify) {
    std::barrier pace(1);
    return faulty(version, verify, pace);
}

} // namespace

TEST(Settings, ApplyToTheirThreadUntilTheirScopeEnds) {
    std::string outer;
    std::string inner;
    const std::string longer(100'000, 'x');
    {
        const GEOMscope scope(noting(outer));
        GEOMerror("%s", longer.c_str());
        {
            const GEOMscope nested(noting(inner));
            GEOMcheck_obj(nullptr, 0, nullptr);
        }
        GEOMerror("outer again");
    }
    EXPECT_EQ(inner, "finding: NULL object received\n");
    EXPECT_EQ(outer, "error: " + longer + "\nerror: outer again\n");
    const GEOMscope scope(noting(outer)); // does not receive the message that ends the process
    const auto print = [] {
        const GEOMscope innermost{GEOMsettings()};
        GEOMerror("no receiver");
        std::thread([] { GEOMcheck_obj(nullptr, 0, nullptr); }).join();
        std::exit(0);
    };
    EXPECT_EXIT(print(), testing::ExitedWithCode(0),
                "^GEOM error: no receiver\nGEOMcheck_obj error: NULL object received\n$");
    EXPECT_EXIT(GEOMfatal_error("end"), testing::ExitedWithCode(1), "^GEOM fatal error: end\n$");
}

TEST(Settings, ServeThreadsThatWriteAtTheSameTime) {
    const std::string plain = faultyAlone(GEOM_VERSION_RAW, false);
    const std::string verified = faultyAlone(GEOM_VERSION_XDR, true);
    EXPECT_TRUE(plain.starts_with("46MG") && verified.starts_with("GM64"));
    EXPECT_EQ(plain.find("finding"), plain.npos);
    EXPECT_TRUE(verified.ends_with("error: GEOMadd_radii: can't add radii to obj type\n"
                                   "finding: mesh object has negative dims\n"    // when written
                                   "finding: mesh object has negative dims\n")); // when destroyed
    std::barrier pace(2);
    std::string other;
    std::thread thread([&] { other = faulty(GEOM_VERSION_RAW, false, pace); });
    EXPECT_EQ(faulty(GEOM_VERSION_XDR, true, pace), verified);
    thread.join();
    EXPECT_EQ(other, plain);
}

TEST(Settings, OverrideTheEnvironment) {
    setenv("KRA_GEOM_WRITE_V2", "", 1);
    EXPECT_EQ(GEOMenvironment_settings().version, GEOM_VERSION_RAW);
    EXPECT_TRUE(faultyAlone(GEOM_VERSION_XDR, false).starts_with("GM64"));
    unsetenv("KRA_GEOM_WRITE_V2");
    EXPECT_EQ(GEOMenvironment_settings().version, GEOM_VERSION_XDR);
}
