#pragma once

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Law.hpp"
#include "host/feeds/wire/MakeDecoder.hpp"
#include "host/feeds/wire/WireReading.hpp"
#include "platform/Files.hpp"
#include "platform/Number.hpp"

// The laws of every decoder.

namespace vigil::fuzz {

/// What a fresh decoder of that feed makes of a message, as text; the laws of each packet hold.
inline std::string packetsOf(const char* url, const RawMessage& message, bool numbersAreFinite) {
    std::string events;
    std::vector<Packet> packets;
    const auto decoder =
        makeDecoder(FeedUrl::parse(url).value(), [](Date wallClock, Date) { return wallClock; });
    decoder->decode(message, packets, [&events](const std::string& words) {
        require(!words.empty() && isValidUtf8(words), "a problem is told in words");
        events += words + '\n';
    });
    require(packets.size() <= 1, "a message is one packet at most");
    for (const Packet& packet : packets) {
        require(isValidUtf8(packet.identity) && isValidUtf8(packet.sensor), "names are UTF-8");
        require(packet.readings.size() <= kMostReadingsOfMessage, "readings are bounded");
        require(!packet.time || std::isfinite(packet.time->secondsSinceReference()), "a time is finite");
        events += packet.identity + ' ' + packet.sensor + '\n';
        for (const PacketReading& reading : packet.readings) {
            require(isValidUtf8(reading.key) && isValidUtf8(reading.text), "keys and texts are UTF-8");
            require(!numbersAreFinite || std::isfinite(reading.value), "numbers are finite");
            events += reading.key + ' ' + numberText(reading.value) + ' ' + reading.text + '\n';
        }
    }
    return events;
}

}  // namespace vigil::fuzz
