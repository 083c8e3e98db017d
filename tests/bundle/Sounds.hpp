#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vigil {

/// A sound as its file holds it.
struct SoundFile {
    int channels = 0;
    int rate = 0;  ///< samples a second
    int bits = 0;
    std::vector<std::int16_t> samples;

    double seconds() const { return static_cast<double>(samples.size()) / rate; }
    /// The largest sample, 1 being full scale.
    double peak() const;
    /// How often the sound passes zero in a second: high and low sounds differ in it.
    double crossings() const;
};

/// The bytes of a file; none when it cannot be read.
std::string bytesOf(const std::string& path);
/// A .wav file of plain 16-bit samples; an empty sound when it is anything else.
SoundFile readWav(const std::string& path);

}  // namespace vigil
