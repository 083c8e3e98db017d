#include "tests/bundle/Sounds.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vigil {

std::string bytesOf(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

double SoundFile::peak() const {
    int most = 0;
    for (const int sample : samples)
        most = std::max(most, std::abs(sample));
    return most / 32767.0;
}

double SoundFile::crossings() const {
    int count = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        count += (samples[i - 1] < 0) != (samples[i] < 0) ? 1 : 0;
    return count / seconds();
}

SoundFile readWav(const std::string& path) {
    const std::string bytes = bytesOf(path);
    const auto number = [&](std::size_t at, std::size_t size) {
        std::uint32_t value = 0;
        for (std::size_t i = size; i > 0; --i)
            value = value << 8 | static_cast<unsigned char>(bytes.at(at + i - 1));
        return static_cast<int>(value);
    };
    // The plain form: a head, 16 bytes of format, then the samples to the end.
    if (bytes.size() < 44 || bytes.compare(0, 4, "RIFF") != 0 || bytes.compare(8, 8, "WAVEfmt ") != 0 ||
        number(16, 4) != 16 || number(20, 2) != 1 || bytes.compare(36, 4, "data") != 0 ||
        static_cast<std::size_t>(number(40, 4)) + 44 != bytes.size())
        return {};
    SoundFile sound{number(22, 2), number(24, 4), number(34, 2), {}};
    for (std::size_t at = 44; at + 1 < bytes.size(); at += 2)
        sound.samples.push_back(static_cast<std::int16_t>(number(at, 2)));
    return sound;
}

}  // namespace vigil
