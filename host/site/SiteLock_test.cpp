#include "host/site/SiteLock.hpp"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

constexpr int kRounds = 2000;

TEST(SiteLock, tellsWhoHoldsASite) {
    TemporaryFolder folder;
    const std::string site = folder.path() + "/site";
    EXPECT_EQ(SiteLock::holder(site), 0);
    {
        const auto lock = SiteLock::take(site);
        ASSERT_TRUE(lock);
        EXPECT_EQ(SiteLock::holder(site), ::getpid());
        const auto second = SiteLock::take(site);
        ASSERT_FALSE(second);
        EXPECT_EQ(second.error().kind, SiteError::Kind::Locked);
        EXPECT_NE(second.error().message.find("process " + std::to_string(::getpid())), std::string::npos);
    }
    EXPECT_EQ(SiteLock::holder(site), 0);
}

TEST(SiteLock, isNeverInTheWayOfAServiceWhenSomebodyOnlyAsksWhoRunsTheSite) {
    TemporaryFolder folder;
    const std::string site = folder.path() + "/site";
    std::atomic<bool> over{false};
    std::atomic<long> asked{0};
    std::thread curious([&] {
        while (!over) {
            static_cast<void>(SiteLock::holder(site));
            ++asked;
        }
    });
    int refused = 0;
    for (int round = 0; round < kRounds || asked < kRounds; ++round)
        if (!SiteLock::take(site)) ++refused;
    over = true;
    curious.join();
    EXPECT_EQ(refused, 0);
}

}  // namespace
}  // namespace vigil
