#include "host/services/ScriptWire.hpp"

#include <gtest/gtest.h>

#include "host/services/HelperWire.hpp"

namespace vigil {
namespace {

std::string body(const std::string& message) {
    return message.substr(4);
}

ScriptJob someJob() {
    return {.mark = "m-1",
            .source = std::string("echo \0 hi", 9),
            .arguments = {"a", "", "b c"},
            .environment = {"A=1", "B="},
            .timeout = 60000,
            .termGrace = 500,
            .leftoverGrace = 200};
}

TEST(ScriptWire, AJobComesBackAsItWent) {
    const auto job = decodeScriptJob(body(encodeScriptJob(someJob())));
    ASSERT_TRUE(job);
    EXPECT_EQ(job->mark, "m-1");
    EXPECT_EQ(job->source, std::string("echo \0 hi", 9));
    EXPECT_EQ(job->arguments, (std::vector<std::string>{"a", "", "b c"}));
    EXPECT_EQ(job->environment, (std::vector<std::string>{"A=1", "B="}));
    EXPECT_EQ(job->timeout, 60000u);
    EXPECT_EQ(job->termGrace, 500u);
    EXPECT_EQ(job->leftoverGrace, 200u);
}

TEST(ScriptWire, AResultComesBackAsItWent) {
    ScriptResult result;
    result.outcome = ScriptResult::Signalled;
    result.exitCode = 3;
    result.signal = 9;
    result.lastLines = "ü\n";
    result.outputBytes = 5'000'000'000;
    result.truncated = true;
    result.failure = "why";
    EXPECT_EQ(decodeScriptResult(body(encodeScriptResult(result))), result);
}

TEST(ScriptWire, NoDamageOfAJobIsTakenForAJob) {
    const std::string whole = body(encodeScriptJob(someJob()));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(decodeScriptJob(whole.substr(0, size))) << size;
    EXPECT_FALSE(decodeScriptJob(whole + "x"));
    EXPECT_FALSE(decodeScriptResult(whole));
    EXPECT_FALSE(isScriptStarts(whole));
    EXPECT_TRUE(isScriptStarts(body(encodeScriptStarts())));
    // a length that says more than there is
    std::string longer = whole;
    longer[5 + 3] = '\x7F';
    EXPECT_FALSE(decodeScriptJob(longer));
}

TEST(ScriptWire, AnOutcomeThatNobodyKnowsIsNoResult) {
    std::string message = body(encodeScriptResult({}));
    message[1] = 7;
    EXPECT_FALSE(decodeScriptResult(message));
}

TEST(HelperWire, MessagesAreTakenWholeHoweverTheyArrive) {
    const std::string bytes = WireWriter('a').text("one").take() + WireWriter('b').number(7).take();
    WireBuffer buffer;
    std::vector<std::string> taken;
    for (const char byte : bytes) {
        buffer.append({&byte, 1});
        while (auto message = buffer.next())
            taken.push_back(*message);
    }
    ASSERT_EQ(taken.size(), 2u);
    WireReader first(taken[0]);
    EXPECT_EQ(first.kind(), 'a');
    EXPECT_EQ(first.text(), "one");
    EXPECT_TRUE(first.complete());
    WireReader second(taken[1]);
    EXPECT_EQ(second.number(), 7u);
    EXPECT_TRUE(second.complete());
    EXPECT_EQ(second.number(), 0u);
    EXPECT_FALSE(second.ok());
}

TEST(HelperWire, ALengthThatNoMessageHasBreaksTheStream) {
    for (const std::string& bytes : {std::string(4, '\0'), std::string("\x01\x00\x40\x00", 4)}) {
        WireBuffer buffer;
        buffer.append(bytes);
        EXPECT_FALSE(buffer.next());
        EXPECT_TRUE(buffer.broken());
        buffer.append(WireWriter('a').take());
        EXPECT_FALSE(buffer.next());
    }
    WireBuffer largest;
    largest.append(std::string("\x00\x00\x40\x00", 4));
    EXPECT_FALSE(largest.next());
    EXPECT_FALSE(largest.broken());
}

}  // namespace
}  // namespace vigil
