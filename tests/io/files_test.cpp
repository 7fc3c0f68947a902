#include "io/files.h"
#include "io/retry.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace meshcast::io {
namespace {

namespace fs = std::filesystem;

/// Each test has its own folder.
class Files : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::path(testing::TempDir()) /
                  ("io." + std::to_string(::getpid()) + "." +
                   testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(folder_ / "inside");
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    static std::string read(const std::string& name) {
        std::ifstream file(name, std::ios::binary);
        std::ostringstream text;
        text << file.rdbuf();
        return text.str();
    }
    static std::error_code write(const std::string& name, const std::string& text) {
        return writeFile(name, [&text](int file) { return writeAll(file, text); });
    }
    std::ptrdiff_t fileCount() const {
        return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
    }

    fs::path folder_;
};

TEST_F(Files, AreReadToTheirLimit) {
    write(path("x"), std::string(1000, 'x'));
    EXPECT_EQ(std::get<std::string>(readFile(path("x"), 1000)).size(), 1000U);
    EXPECT_EQ(std::get<std::error_code>(readFile(path("x"), 999)), std::errc::file_too_large);
    EXPECT_EQ(std::get<std::error_code>(readFile(path("inside"), 9)), std::errc::is_a_directory);
    EXPECT_EQ(std::get<std::error_code>(readFile(path("y"), 9)),
              std::errc::no_such_file_or_directory);
}

TEST_F(Files, PipesAreReadToTheirLimitAndWaitedFor) {
    for (const std::size_t limit : {std::size_t(300'000), std::size_t(299'999)}) {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe2(ends.data(), O_NONBLOCK), 0);
        const Descriptor out(ends[0]);
        std::thread writer([&ends] {
            Descriptor in(ends[1]);
            ::usleep(20'000);
            writeAll(in.number(), std::string(300'000, 'x'));
        });
        const auto bytes = readWhole(out.number(), limit);
        // Reads the rest, so that the writer can end.
        std::array<char, 4096> rest{};
        while (readSome(out.number(), rest.data(), rest.size()) > 0) {
        }
        writer.join();
        EXPECT_EQ(bytes.index() == 0, limit == 300'000);
    }
}

TEST_F(Files, AreReplacedInOneStep) {
    const std::string name = path(std::string(255, 'n'));
    EXPECT_FALSE(write(name, "old"));
    ::chmod(name.c_str(), 06751);
    const auto error = writeFile(name, [&](int file) {
        EXPECT_FALSE(writeAll(file, "new"));
        EXPECT_EQ(read(name), "old");
        return std::error_code();
    });
    EXPECT_FALSE(error);
    EXPECT_EQ(read(name), "new");
    struct stat status {};
    ASSERT_EQ(::stat(name.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0751U);
    EXPECT_TRUE(writeFile(name, [](int) { return std::make_error_code(std::errc::io_error); }));
    EXPECT_EQ(read(name), "new");
    EXPECT_EQ(fileCount(), 2);
}

TEST_F(Files, LinksStayAndOtherNamesKeepTheOldContent) {
    write(path("target"), "old");
    fs::create_hard_link(path("target"), path("other"));
    fs::create_symlink("target", path("link"));
    fs::create_symlink("inside/new", path("dangling"));
    EXPECT_FALSE(write(path("link"), "new"));
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(read(path("target")), "new");
    EXPECT_EQ(read(path("other")), "old");
    EXPECT_FALSE(write(path("dangling"), "x"));
    EXPECT_EQ(read(path("inside/new")), "x");
}

TEST_F(Files, DevicesAndPipesAreWrittenDirectly) {
    EXPECT_EQ(write("/dev/full", "x"), std::errc::no_space_on_device);
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    const Descriptor reader(::open(path("fifo").c_str(), O_RDONLY | O_NONBLOCK));
    EXPECT_FALSE(write(path("fifo"), "x"));
    EXPECT_TRUE(fs::is_fifo(path("fifo")));
    // A link into /proc stands for the open file, which is written to even if it is a regular file.
    const Descriptor file(::open(path("x").c_str(), O_RDWR | O_CREAT, 0600));
    const ino_t before = [&] {
        struct stat status {};
        ::fstat(file.number(), &status);
        return status.st_ino;
    }();
    fs::create_symlink("/proc/self/fd/" + std::to_string(file.number()), path("stdout"));
    EXPECT_FALSE(write(path("stdout"), "y"));
    EXPECT_FALSE(write(path("stdout"), "z"));
    struct stat after {};
    ::stat(path("x").c_str(), &after);
    EXPECT_EQ(after.st_ino, before);
    EXPECT_EQ(read(path("x")), "yz");
}

TEST_F(Files, AnInterruptionLeavesNothing) {
    for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            (void)writeFile(path("x"), [signal](int file) {
                const std::error_code error = writeAll(file, "half");
                ::raise(signal);
                return error;
            });
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        EXPECT_EQ(fileCount(), 1) << signal; // Only the subfolder.
    }
}

TEST_F(Files, AFileSizeLimitIsReported) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const rlimit small{1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &small);
        const std::error_code error = write(path("x"), std::string(2000, 'x'));
        ::_exit(error == std::errc::file_too_large ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(Files, NothingIsOpenedOutsideOfAFolder) {
    write(path("outside"), "o");
    write(path("inside/a"), "a");
    fs::create_directory(path("inside/deep"));
    fs::create_symlink("../a", path("inside/deep/fine"));
    fs::create_symlink("../../outside", path("inside/deep/out"));
    fs::create_symlink(path("inside/a"), path("inside/absolute"));
    ASSERT_EQ(::mkfifo(path("inside/fifo").c_str(), 0600), 0);
    const auto folder = Folder::open(path("inside"));
    ASSERT_EQ(folder.index(), 0U);
    const auto opened = [&folder](const std::string& name) {
        const auto file = std::get<Folder>(folder).openFile(name);
        return file.index() == 0 ? "" : std::get<std::string>(file);
    };
    EXPECT_EQ(opened("a"), "");
    EXPECT_EQ(opened("deep/../a"), "");
    EXPECT_EQ(opened("deep/fine"), "");
    for (const std::string name :
         {"../outside", "deep/out", "absolute", "/etc/passwd", "../inside/a"}) {
        EXPECT_EQ(opened(name), "it is outside of the root folder") << name;
    }
    EXPECT_EQ(opened("fifo"), "it is not a regular file");
    EXPECT_EQ(opened("deep"), "it is not a regular file");
    EXPECT_EQ(opened(std::string("a\0b", 3)), "its name holds a zero byte");
    EXPECT_EQ(opened("none"), "No such file or directory");
    EXPECT_EQ(Folder::open(path("outside")).index(), 1U);
}

} // namespace
} // namespace meshcast::io
