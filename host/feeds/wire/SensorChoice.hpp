#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/feeds/FeedUrl.hpp"
#include "host/feeds/wire/WireReading.hpp"

namespace vigil {

/// Which of the sensors that a receiver hears belong to the station: options `sensor` and `inside` of its
/// URL. A name chooses every sensor that begins with it, part by part: "Acurite-Tower" chooses
/// "Acurite-Tower/11524/A". Without either option every sensor does. One thread at a time.
class SensorChoice {
  public:
    explicit SensorChoice(const FeedUrl& url);

    enum class Place { Elsewhere, Outside, Inside };
    Place place(std::string_view sensor) const;

    /// Puts a reading of a sensor inside where it stands there.
    static void moveInside(PacketReading& reading);
    /// Tells once where two sensors send the same reading and nobody has chosen between them.
    void noteKey(std::string_view sensor, const std::string& key, const DecodeProblem& problem);

  private:
    std::vector<std::string> m_outside;
    std::vector<std::string> m_inside;
    std::map<std::string, std::string, std::less<>> m_sensorOfKey;  // at most kMostReadingsOfMessage
    bool m_told = false;
};

}  // namespace vigil
