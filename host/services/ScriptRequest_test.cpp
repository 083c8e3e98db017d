#include "host/services/ScriptRequest.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

ScriptResult after(double seconds, ScriptResult::Outcome outcome) {
    ScriptResult result;
    result.started = Date(1000);
    result.ended = Date(1000 + seconds);
    result.outcome = outcome;
    return result;
}

TEST(ScriptResult, ReadsAsASentence) {
    EXPECT_EQ(after(1.26, ScriptResult::Succeeded).sentence(), "The script succeeded after 1.3 s.");
    ScriptResult failed = after(0, ScriptResult::Failed);
    failed.exitCode = 3;
    EXPECT_EQ(failed.sentence(), "The script failed with exit code 3 after 0.0 s.");
    ScriptResult signalled = after(2, ScriptResult::Signalled);
    signalled.signal = 9;
    EXPECT_EQ(signalled.sentence(), "The script was ended by signal 9 (Killed) after 2.0 s.");
    EXPECT_EQ(after(60, ScriptResult::TimedOut).sentence(),
              "The script was ended because its time was over after 60.0 s.");
    ScriptResult missing = after(0, ScriptResult::NotStarted);
    missing.failure = "there is no program /x";
    EXPECT_EQ(missing.sentence(), "The script was not started: there is no program /x.");
    EXPECT_EQ(after(0, ScriptResult::Interrupted).sentence(), "The script was interrupted.");
    EXPECT_EQ(after(0, ScriptResult::Refused).sentence(), "The script was refused.");
}

TEST(ScriptRequest, IsRefusedBeyondEachLimitAndNotAtIt) {
    ScriptRequest request;
    EXPECT_EQ(whyRefused(request), "");
    request.source.assign(kScriptSource, 'x');
    request.arguments.assign(kScriptArguments, "");
    request.arguments[0].assign(kScriptArgument, 'x');
    request.timeoutSeconds = kScriptTimeoutSeconds;
    request.environment = {{"A", std::string(kScriptArgument - 1, 'x')}};
    EXPECT_EQ(whyRefused(request), "");

    ScriptRequest more = request;
    more.source += 'x';
    EXPECT_EQ(whyRefused(more), "the script is longer than 1 MiB");
    more = request, more.arguments.emplace_back();
    EXPECT_EQ(whyRefused(more), "there are more than 1000 arguments");
    more = request, more.arguments[0] += 'x';
    EXPECT_EQ(whyRefused(more), "an argument is longer than 64 KiB");
    more = request, more.timeoutSeconds += 1;
    EXPECT_EQ(whyRefused(more), "the time-out is longer than a day");
    more = request, more.timeoutSeconds = 0;
    EXPECT_EQ(whyRefused(more), "a time-out of less than a second leaves no time to run");
    more = request, more.environment[0].second += 'x';
    EXPECT_EQ(whyRefused(more), "an environment entry is longer than 64 KiB");
}

TEST(ScriptRequest, WordsAreBoundedTogether) {
    ScriptRequest request;
    request.arguments.assign(8, std::string(kScriptArgument - 1, 'x'));
    EXPECT_EQ(whyRefused(request), "");
    request.arguments.emplace_back();
    EXPECT_EQ(whyRefused(request), "arguments and environment are longer than 512 KiB together");
}

TEST(ScriptRequest, WhatNoProcessCanBeGivenIsRefused) {
    ScriptRequest request;
    request.environment = {{"A=B", "x"}};
    EXPECT_EQ(whyRefused(request), "an environment entry has no usable name");
    request.environment = {{"", "x"}};
    EXPECT_EQ(whyRefused(request), "an environment entry has no usable name");
    request.environment = {{"A", std::string(1, '\0')}};
    EXPECT_EQ(whyRefused(request), "the environment entry A holds a NUL character");
}

}  // namespace
}  // namespace vigil
