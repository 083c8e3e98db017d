#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/feeds/FeedUrl.hpp"
#include "host/feeds/wire/WireReading.hpp"

namespace simdjson::dom {
class object;
}

namespace vigil {

/// Reads the system's own JSON lines (docs/formats/readings-json.md). One thread at a time.
class LinesReader {
  public:
    explicit LinesReader(const FeedUrl& url) : m_station(url.option("station")) {}

    void take(const simdjson::dom::object& given, const RawMessage& message, std::vector<Packet>& packets,
              const DecodeProblem& problem) const;

  private:
    std::optional<std::string> m_station;
};

/// Readings that need no reading: each keeps both of its values. `message.ready` must be there.
Packet readyPacket(const RawMessage& message);

}  // namespace vigil
