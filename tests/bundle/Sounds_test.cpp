#include "tests/bundle/Sounds.hpp"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace vigil {
namespace {

constexpr std::size_t kMostBytes = 60000;
const std::vector<std::string> kWavs = {"bell.wav", "chime.wav", "drop.wav", "knock.wav"};

std::string resource(const std::string& name) {
    return std::string(VIGIL_BUNDLE "/Resources/") + name;
}

TEST(Sounds, EachWavIsShortPlainAndNeitherSilentNorTooLoud) {
    for (const std::string& name : kWavs) {
        SCOPED_TRACE(name);
        const SoundFile sound = readWav(resource(name));
        ASSERT_FALSE(sound.samples.empty());
        EXPECT_EQ(sound.channels, 1);
        EXPECT_EQ(sound.bits, 16);
        EXPECT_EQ(sound.rate, 22050);
        EXPECT_GT(sound.seconds(), 0.3);
        EXPECT_LT(sound.seconds(), 1.5);
        EXPECT_GT(sound.peak(), 0.5);
        EXPECT_LT(sound.peak(), 0.7);
        EXPECT_EQ(sound.samples.front(), 0) << "it begins without a click";
        EXPECT_LT(std::abs(sound.samples.back()), 50) << "and ends without one";
        EXPECT_LT(bytesOf(resource(name)).size(), kMostBytes);
    }
}

TEST(Sounds, AnyTwoWavsDifferClearlyInPitchOrLength) {
    for (const std::string& one : kWavs) {
        for (const std::string& other : kWavs) {
            if (one >= other) continue;
            const SoundFile a = readWav(resource(one));
            const SoundFile b = readWav(resource(other));
            const double pitch = std::abs(std::log(a.crossings() / b.crossings()));
            const double length = std::abs(std::log(a.seconds() / b.seconds()));
            EXPECT_GT(std::max(pitch, length), 0.2) << one << " and " << other;
        }
    }
}

/// Bytes of one frame of layer III, or 0 where none begins.
std::size_t frameSize(const std::string& bytes, std::size_t at) {
    static constexpr int kKilobits[2][16] = {
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},       // half rates
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0}};  // whole rates
    static constexpr int kRates[3] = {44100, 48000, 32000};
    if (at + 4 > bytes.size()) return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[at + i]); };
    if (byte(0) != 0xff || (byte(1) & 0xe6) != 0xe2) return 0;
    const bool whole = (byte(1) & 0x18) == 0x18;
    const int kilobits = kKilobits[whole ? 1 : 0][byte(2) >> 4];
    if ((byte(2) >> 2 & 3) == 3 || kilobits == 0) return 0;
    const int rate = kRates[byte(2) >> 2 & 3] / (whole ? 1 : 2);
    return static_cast<std::size_t>((whole ? 144000 : 72000) * kilobits / rate + (byte(2) >> 1 & 1));
}

TEST(Sounds, TheMp3IsFramesFromItsFirstByteToItsLast) {
    const std::string bytes = bytesOf(resource("dawn.mp3"));
    EXPECT_LT(bytes.size(), kMostBytes);
    std::size_t at = 0;
    int frames = 0;
    for (std::size_t size; (size = frameSize(bytes, at)) > 0; at += size)
        ++frames;
    EXPECT_EQ(at, bytes.size());
    EXPECT_GT(frames, 50);
}

TEST(Sounds, AFileThatIsNoPlainWavIsNoSound) {
    EXPECT_TRUE(readWav(resource("dawn.mp3")).samples.empty());
    EXPECT_TRUE(readWav(resource("missing.wav")).samples.empty());
}

}  // namespace
}  // namespace vigil
