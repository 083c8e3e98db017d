#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/readings/Packet.hpp"

namespace vigil {

// Packets made up by hand, for tests and benchmarks. Any thread.

inline PacketReading numberSample(std::string key, double value, Unit unit = Unit::None) {
    return {.key = std::move(key), .value = value, .unit = unit};
}

inline PacketReading textSample(std::string key, std::string text) {
    return {.key = std::move(key), .type = kTextType, .text = std::move(text)};
}

inline PacketReading missingSample(std::string key) {
    return {.key = std::move(key), .missing = true};
}

/// `at` is the arrival, in seconds since 2001; the packet has no time of its own.
inline Packet packetSample(double at, std::vector<PacketReading> readings, std::string sensor = {}) {
    return {.sensor = std::move(sensor), .arrived = Date(at), .readings = std::move(readings)};
}

inline Packet timedSample(double time, double at, std::vector<PacketReading> readings,
                          std::string sensor = {}) {
    Packet packet = packetSample(at, std::move(readings), std::move(sensor));
    packet.time = Date(time);
    return packet;
}

}  // namespace vigil
