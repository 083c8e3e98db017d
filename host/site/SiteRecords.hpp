#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Date.hpp"

namespace vigil {

/// Names a row of the site file for good; 0 is none.
using RecordId = std::int64_t;

/// A station as the user set it up.
struct StationRecord {
    RecordId id = 0;
    std::string name{};  ///< unique in its site
    std::string feed{};  ///< a feed's URL; empty: it has none yet
    bool usUnits = false;
    std::vector<std::pair<std::string, std::string>> units{};  ///< by key of a reading, what differs
    std::vector<std::string> rolling{};  ///< "windSpeed mean 10", as the user chose them
};

/// A plug-in of a station.
struct PlugInRecord {
    RecordId id = 0;
    RecordId station = 0;
    std::string className{};
    std::string title{};    ///< unique in its site
    std::string archive{};  ///< its keyed archive
    /// How often people have changed it. What a run saves of an older edition is refused, so that a change
    /// made meanwhile is not lost.
    std::int64_t edition = 0;
};

/// A fire of a plug-in: written before anything that it does, and again when it is over.
struct FireRecord {
    RecordId id = 0;
    RecordId plugIn = 0;
    Date time{};
    bool completed = false;
};

/// One thing that a row of a fire, or of a test, did.
struct EffectRecord {
    enum Kind { Script, Sound, Speech, Mail, Sms };
    enum State { Queued, Started, Ended };

    RecordId id = 0;
    RecordId fire = 0;    ///< 0: a test
    RecordId plugIn = 0;  ///< 0: nobody knows
    std::string station{};
    std::string title{};  ///< of the plug-in, as it was then
    Kind kind = Script;
    std::string what{};  ///< "gust.sh roof", "bell.wav", the text spoken
    State state = Queued;
    Date queued{};
    std::optional<Date> started{};  ///< of Started; of Ended where it had begun
    std::optional<Date> ended{};    ///< of Ended
    std::string result{};           ///< of Ended: "succeeded", "failed", "interrupted", …
    std::string detail{};           ///< of Ended: a sentence, and the last lines that were written

    // Of mail and short messages: each attempt is a record of its own.
    int attempt = 1;
    RecordId firstAttempt = 0;    ///< of the second and later ones: the record of the first
    std::optional<Date> again{};  ///< of Ended where it was refused for now: when the next attempt is due
    std::string handOver{};  ///< what a further attempt needs: the whole text that the action handed over
};

}  // namespace vigil
