#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/feeds/FeedUrl.hpp"
#include "host/feeds/wire/JsonValue.hpp"
#include "host/feeds/wire/WeewxKeys.hpp"
#include "host/feeds/wire/WireReading.hpp"

namespace simdjson::dom {
class object;
}

namespace vigil {

/// Reads what WeeWX publishes: packets as objects, and topics that carry one value each. One thread at a
/// time.
class WeewxReader {
  public:
    /// The unit systems of so many groups of topics are remembered.
    static constexpr std::size_t kMostGroups = 1000;

    explicit WeewxReader(const FeedUrl& url);

    void take(const simdjson::dom::object& given, const RawMessage& message, std::vector<Packet>& packets,
              const DecodeProblem& problem);
    /// A bare value; its name is the last level of the route.
    void takeValue(const RawMessage& message, std::vector<Packet>& packets, const DecodeProblem& problem);

  private:
    std::optional<PacketReading> reading(std::string_view name, const JsonValue& value,
                                         std::optional<WeewxSystem> system,
                                         const DecodeProblem& problem) const;
    std::optional<WeewxSystem> systemOf(std::string_view group) const;
    void noteSystem(std::string_view group, const JsonValue& value, const DecodeProblem& problem);

    std::optional<WeewxSystem> m_chosen;
    std::map<std::string, WeewxSystem, std::less<>> m_systems;  // by the levels above the value
};

}  // namespace vigil
