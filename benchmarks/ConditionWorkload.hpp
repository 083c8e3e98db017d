#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host_contract/Readings.hpp"

namespace vigil::bench {

inline constexpr std::size_t kProperties = 40;
inline constexpr std::size_t kFrames = 256;

/// A small generator with a fixed sequence.
class SplitMix {
  public:
    constexpr explicit SplitMix(std::uint64_t seed) : m_state(seed) {}
    constexpr std::uint64_t next() {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15U);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }
    /// 0 <= x < 1
    constexpr double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }

  private:
    std::uint64_t m_state;
};

/// "readings[property].unitValue OP literal" with OP < or >.
struct Test {
    std::size_t property;
    bool less;
    double literal;
};

/// The condition forms, known to the compiler, so that the compiled-in contestant has them as constants:
/// groups of `PerGroup` tests. Groups and tests are joined by the form's connectives.
template <std::size_t Groups, std::size_t PerGroup>
using Form = std::array<std::array<Test, PerGroup>, Groups>;

/// Tests whose truth is hard to foresee, each true in about the given share of the frames.
template <std::size_t Groups, std::size_t PerGroup>
constexpr Form<Groups, PerGroup> randomForm(std::uint64_t seed, double share) {
    SplitMix random(seed);
    Form<Groups, PerGroup> form{};
    for (auto& group : form)
        for (Test& test : group) {
            test.property = random.next() % kProperties;
            test.less = random.next() % 2 == 0;
            const double place = test.less ? share : 1 - share;
            test.literal = static_cast<double>(static_cast<int>((place * 110 - 22) * 10)) / 10;
        }
    return form;
}

/// "windChill.unitValue < 10 OR windSpeed.unitValue > 25"
inline constexpr Form<2, 1> kC2{{{{{0, true, 10}}}, {{{1, false, 25}}}}};
/// An OR of 4 groups, each an AND of 2.
inline constexpr Form<4, 2> kC8 = randomForm<4, 2>(8, 0.39);
/// An OR of 16 groups, each an AND of 4; the branches cannot be foreseen.
inline constexpr Form<16, 4> kC64 = randomForm<16, 4>(64, 0.45);
/// An AND of 64 of which all have to be asked: the last alone depends on the data.
inline constexpr Form<1, 64> kC64w = [] {
    Form<1, 64> form{};
    for (std::size_t i = 0; i < 64; ++i)
        form[0][i] = {i * 7 % kProperties, false, -1000};
    form[0][63] = {11, false, 33};
    return form;
}();

struct Fields {
    double value;
    double unitValue;
};
/// A frame as a program would hold it that knows its station: plain fields.
struct Station {
    Fields readings[kProperties];
};

struct Workload {
    std::vector<Station> stations;
    std::vector<std::shared_ptr<const Readings>> batches;
};

inline std::string keyOf(std::size_t property) {
    if (property == 0) return "windChill";
    if (property == 1) return "windSpeed";
    return "property" + std::to_string(property);
}

/// 256 frames of 40 readings. From one to the next about half of the readings get a newer time and three
/// quarters of those a new value, uniform in -20…80 with two decimals; the value in the user's unit is 1.1
/// times as large, rounded alike.
inline Workload makeWorkload() {
    SplitMix random(1);
    const auto hundredths = [](double x) { return std::round(x * 100) / 100; };
    std::vector<std::string> keys;
    std::vector<std::shared_ptr<const AgentPropertyLabel>> labels;
    std::vector<AgentProperty::Parts> parts(kProperties);
    for (std::size_t i = 0; i < kProperties; ++i) {
        keys.push_back(keyOf(i));
        labels.push_back(std::make_shared<const AgentPropertyLabel>(
            AgentPropertyLabel{.propertyName = keys.back(), .name = keys.back(), .unit = "°C"}));
    }
    const auto table = KeyTable::make(keys);
    Workload work;
    for (std::size_t frame = 0; frame < kFrames; ++frame) {
        Station station{};
        std::vector<AgentProperty> entries;
        for (std::size_t i = 0; i < kProperties; ++i) {
            const bool newer = frame == 0 || random.unit() < 0.5;
            if (newer) parts[i].time = Date(static_cast<double>(frame) * 60);
            if (newer && (frame == 0 || random.unit() < 0.75)) {
                parts[i].value = hundredths(random.unit() * 100 - 20);
                parts[i].unitValue = hundredths(1.1 * parts[i].value);
            }
            station.readings[i] = {parts[i].value, parts[i].unitValue};
            entries.emplace_back(labels[i], parts[i]);
        }
        work.stations.push_back(station);
        work.batches.push_back(Readings::make(table, std::move(entries)));
    }
    return work;
}

}  // namespace vigil::bench
