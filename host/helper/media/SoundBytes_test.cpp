#include "host/helper/media/SoundBytes.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

using namespace std::string_literals;

/// As a program writes it that does not know yet how much it will write.
std::string piped(const std::string& samples) {
    return "RIFF\x24\xf0\xff\x7fWAVEfmt \x10\0\0\0\x01\0\x01\0\x22\x56\0\0\x44\xac\0\0\x02\0\x10\0"s +
           "LIST\x03\0\0\0abc\0"s + "data\0\xf0\xff\x7f"s + samples;
}

TEST(SoundBytes, FormsAreKnownByHowTheyBegin) {
    EXPECT_EQ(soundForm(piped("ab")), SoundForm::Wav);
    EXPECT_EQ(soundForm("OggS..."), SoundForm::Ogg);
    EXPECT_EQ(soundForm("fLaC..."), SoundForm::Flac);
    EXPECT_EQ(soundForm("ID3..."), SoundForm::Mp3);
    EXPECT_EQ(soundForm("\xff\xfb\x90\x44"), SoundForm::Mp3);
    EXPECT_EQ(soundForm("\xff\xf3\x40\xc0"), SoundForm::Mp3);
    EXPECT_EQ(soundForm("\xff\xf9\x90\x44"), SoundForm::None) << "a layer that there is not";
    EXPECT_EQ(soundForm("\xff\xfb\xf0\x44"), SoundForm::None) << "a rate that there is not";
    EXPECT_EQ(soundForm("\xff\xfb"), SoundForm::None);
    EXPECT_EQ(soundForm("RIFF....AVI "), SoundForm::None);
    EXPECT_EQ(soundForm("MThd"), SoundForm::None);
    EXPECT_EQ(soundForm(""), SoundForm::None);
}

TEST(SoundBytes, AWavFromAPipeGetsItsTrueSizes) {
    const auto whole = completeWav(piped("abcdef"));
    ASSERT_TRUE(whole) << whole.error().message;
    EXPECT_EQ(whole.value().size(), piped("").size() + 6);
    EXPECT_EQ(whole.value().substr(4, 4), std::string("\x36\0\0\0", 4)) << "54 bytes follow";
    EXPECT_EQ(whole.value().substr(whole.value().size() - 10, 4), std::string("\x06\0\0\0", 4));
}

TEST(SoundBytes, HalfASampleAtTheEndGoes) {
    EXPECT_EQ(completeWav(piped("abcde")).value(), completeWav(piped("abcd")).value());
}

TEST(SoundBytes, WhatHoldsNoSampleIsNone) {
    EXPECT_FALSE(completeWav(piped("")));
    EXPECT_FALSE(completeWav(piped("a")));
    EXPECT_FALSE(completeWav(""));
    EXPECT_FALSE(completeWav("Error: no voice"));
    const std::string whole = piped("abcd");
    for (std::size_t size = 0; size < whole.size() - 2; ++size)
        EXPECT_FALSE(completeWav(whole.substr(0, size))) << size;
    EXPECT_FALSE(completeWav("RIFF....WAVEdata\x04\0\0\0abcd"s)) << "samples without a form";
    EXPECT_FALSE(completeWav("RIFF....WAVELIST\xff\xff\xff\xff"s)) << "a size that reaches past the end";
}

}  // namespace
}  // namespace vigil
