#include "host/services/PlayerWire.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

std::string_view withoutLength(const std::string& message) {
    return std::string_view(message).substr(4);
}

TEST(PlayerWire, ASetupComesOutAsItWentIn) {
    const std::string message = encodePlayerSetup({.device = "Hall",
                                                   .program = "/opt/say",
                                                   .voice = "f2",
                                                   .language = "de",
                                                   .rate = 120,
                                                   .programTime = 7});
    const auto setup = decodePlayerSetup(withoutLength(message));
    ASSERT_TRUE(setup);
    EXPECT_EQ(setup->device, "Hall");
    EXPECT_EQ(setup->program, "/opt/say");
    EXPECT_EQ(setup->voice, "f2");
    EXPECT_EQ(setup->language, "de");
    EXPECT_EQ(setup->rate, 120u);
    EXPECT_EQ(setup->programTime, 7u);
}

TEST(PlayerWire, EveryKindOfMessageComesOutAsItWentIn) {
    for (const char kind : std::string("CPSXQVBEA")) {
        const PlayerMessage sent{static_cast<PlayerMessage::Kind>(kind), std::uint64_t{1} << 40, 3,
                                 std::string("a\0b", 3)};
        const auto got = decodePlayerMessage(withoutLength(encodePlayerMessage(sent)));
        ASSERT_TRUE(got) << kind;
        EXPECT_EQ(got->kind, sent.kind);
        EXPECT_EQ(got->id, sent.id);
        EXPECT_EQ(got->number, sent.number);
        EXPECT_EQ(got->text, sent.text);
    }
}

TEST(PlayerWire, WhatIsCutLongerOrOfAnotherKindIsNoMessage) {
    const std::string whole(withoutLength(encodePlayerMessage({PlayerMessage::Play, 1, 0, "bell.wav"})));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(decodePlayerMessage(whole.substr(0, size))) << size;
    EXPECT_FALSE(decodePlayerMessage(whole + "x"));
    EXPECT_FALSE(decodePlayerMessage("Z" + whole.substr(1)));
    for (const auto kind : {PlayerMessage::Ended, PlayerMessage::Verdict})
        EXPECT_FALSE(decodePlayerMessage(withoutLength(encodePlayerMessage({kind, 1, kPlayOutcomes, ""}))));
    const std::string setup(withoutLength(encodePlayerSetup({})));
    EXPECT_FALSE(decodePlayerSetup(setup.substr(0, setup.size() - 1)));
    EXPECT_FALSE(decodePlayerSetup("O\x7f" + setup.substr(2))) << "another version";
    EXPECT_FALSE(decodePlayerSetup(whole));
}

}  // namespace
}  // namespace vigil
