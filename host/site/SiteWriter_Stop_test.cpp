#include <algorithm>
#include <chrono>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "host/site/SiteWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

// The end of a writer, while others still write.

namespace vigil {
namespace {

TEST(SiteWriterStop, whatFollowsFromAWriteIsWrittenAlsoAtTheStop) {
    const TemporaryFolder folder;
    const std::string path = folder.path() + "/home.vigilsite";
    ASSERT_TRUE(SiteFile::create(path));
    const auto site = SiteFile::open(path, Access::Write).value();
    SiteWriter writer(*site);
    EffectRecord effect{.id = writer.newId(), .what = "gust.sh", .queued = Date(1)};
    std::promise<void> committing, stopping;
    writer.putEffect({.id = writer.newId(), .what = "first.sh", .queued = Date(1)}, [&](const Result<Done>&) {
        committing.set_value();
        stopping.get_future().wait();
    });
    committing.get_future().wait();
    // Committed in the last round.
    writer.putEffect(effect, [&](const Result<Done>&) {
        effect.state = EffectRecord::Ended;
        effect.result = "interrupted";
        writer.putEffect(effect, {});
    });
    std::thread stop([&] { writer.stop(); });
    // Once it stops it takes nothing more from others.
    while (writer.state().refused == 0) {
        writer.putEffect({.id = writer.newId(), .what = "late.sh", .queued = Date(2)}, {});
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    stopping.set_value();
    stop.join();
    const auto kept = site->effects().value();
    const auto own =
        std::find_if(kept.begin(), kept.end(), [&](const auto& one) { return one.id == effect.id; });
    ASSERT_NE(own, kept.end());
    EXPECT_EQ(own->result, "interrupted");
}

}  // namespace
}  // namespace vigil
