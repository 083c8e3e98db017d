#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/feeds/wire/MakeDecoder.hpp"
#include "host/feeds/wire/SensorChoice.hpp"

namespace simdjson::dom {
class element;
class object;
}  // namespace simdjson::dom

namespace vigil {

/// Reads what the radio receiver program rtl_433 says of one transmission, of its present and its earlier
/// releases. One thread at a time.
class Rtl433Reader {
  public:
    Rtl433Reader(const FeedUrl& url, WallClockZone localTime);

    void take(const simdjson::dom::object& given, const RawMessage& message, std::vector<Packet>& packets,
              const DecodeProblem& problem);

  private:
    std::optional<Date> timeOf(const simdjson::dom::object& given, Date arrived,
                               const DecodeProblem& problem) const;

    SensorChoice m_choice;
    WallClockZone m_localTime;  // empty: times without a zone are UTC
};

}  // namespace vigil
