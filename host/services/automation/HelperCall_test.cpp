#include "host/services/automation/HelperCall.hpp"

#include <cstdlib>
#include <filesystem>
#include <future>

#include <gtest/gtest.h>
#include <signal.h>

#include "host/services/HelperProcess.hpp"
#include "host/services/automation/testing/MailBench.hpp"
#include "host/services/testing/HeldProcess.hpp"

namespace vigil {
namespace {

TEST(HelperCall, OneThatCannotBeEndedKeepsTheCallerForAMomentOnly) {
    const TemporaryFolder folder;
    const std::string pid = folder.path() + "/pid";
    folder.write("helper",
                 "#!/bin/sh\necho $$ > " + pid + ".part; mv " + pid + ".part " + pid + "\nexec sleep 600\n");
    std::filesystem::permissions(folder.path() + "/helper", std::filesystem::perms::owner_all);
    StopSignal stop;
    auto call = std::async(std::launch::async, [&] {
        return callHelper(folder.path() + "/helper", "mail", "", 'D', std::chrono::minutes(10), stop);
    });
    ASSERT_TRUE(soon([&] { return std::filesystem::exists(pid); }));
    const int number = std::atoi(bytesOf(pid).c_str());
    HeldProcess held(number);
    stop.raise();
    if (!held.holds()) GTEST_SKIP() << "no process may be held here";
    const bool returned = call.wait_for(std::chrono::seconds(30)) == std::future_status::ready;
    EXPECT_TRUE(returned);
    held.release();
    const auto answer = call.get();
    ASSERT_TRUE(answer);
    EXPECT_TRUE(answer.value().stopped);
    EXPECT_EQ(answer.value().ending, "its helper did not answer in time and was ended");
    EXPECT_TRUE(soon([&] {
        HelperProcess::reap();
        return ::kill(number, 0) != 0;
    }));
}

}  // namespace
}  // namespace vigil
