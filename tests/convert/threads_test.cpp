#include "tests/driver/scene_files.h"
#include "tests/support/conversion.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

// Conversions in several threads, each with its own sink. Also built with the thread sanitizer.
namespace meshcast {
namespace {

struct Job {
    std::string text;
    ConvertOptions options;
};

/// A hundred scenes: all files, and then the first ones again with other options.
std::vector<Job> jobs() {
    std::vector<Job> jobs;
    const std::vector<std::filesystem::path> files = sceneFiles();
    for (std::size_t i = 0; i < 100; ++i) {
        Job& job = jobs.emplace_back();
        job.text = contents(files[i % files.size()]);
        job.options.version = i % 2 == 0 ? 10 : 7;
        job.options.verify = i % 3 == 0;
        job.options.text = i >= files.size();
    }
    return jobs;
}

struct Outcome {
    std::string bytes;
    std::string messages;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome outcome(const Job& job) {
    MemorySource source(job.text);
    MemorySink sink;
    MessageText messages;
    convertScene(source, sink, messages, job.options);
    return {sink.bytes(), messages.text};
}

TEST(Threads, ParallelConversionsGiveTheSameOutput) {
    const std::vector<Job> all = jobs();
    std::vector<Outcome> forwards(all.size());
    std::vector<Outcome> backwards(all.size());
    // Started first, so that both threads initialise shared data at the same time.
    std::thread other([&] {
        for (std::size_t i = all.size(); i-- > 0;) {
            backwards[i] = outcome(all[i]);
        }
    });
    for (std::size_t i = 0; i < all.size(); ++i) {
        forwards[i] = outcome(all[i]);
    }
    other.join();
    std::size_t records = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const Outcome alone = outcome(all[i]);
        records += alone.bytes.empty() ? 0 : 1;
        EXPECT_TRUE(forwards[i] == alone && backwards[i] == alone) << i;
    }
    EXPECT_GT(records, 20U);
}

} // namespace
} // namespace meshcast
