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

    struct Place {
        enum { Elsewhere, Outside, Inside } where = Elsewhere;
        std::size_t number = 0;  ///< which of the names of its option chose it, from 0
    };
    Place place(std::string_view sensor) const;

    /// Gives a reading the key that it has at its place: what is outside by the table of the form may stand
    /// inside, and a further sensor's battery is not the first one's.
    static void put(PacketReading& reading, const Place& place);
    /// Tells once where two sensors send the same reading and nobody has chosen between them. A battery is
    /// every sensor's own.
    void noteKey(std::string_view sensor, const std::string& key, const DecodeProblem& problem);

  private:
    std::vector<std::string> m_outside;
    std::vector<std::string> m_inside;
    std::map<std::string, std::string, std::less<>> m_sensorOfKey;  // at most kMostReadingsOfMessage
    bool m_told = false;
};

}  // namespace vigil
