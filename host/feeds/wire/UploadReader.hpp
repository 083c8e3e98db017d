#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/feeds/wire/SensorChoice.hpp"
#include "host/feeds/wire/UploadFields.hpp"
#include "host/feeds/wire/UploadKeys.hpp"

namespace vigil {

/// Reads uploads of all forms. One thread at a time.
class UploadReader {
  public:
    explicit UploadReader(const FeedUrl& url);

    /// `message.payload` are the fields; where it has none, they may stand in `message.route`.
    void take(const RawMessage& message, std::vector<Packet>& packets, const DecodeProblem& problem);

  private:
    struct Upload {
        UploadFields::Form form;
        bool metric;  ///< the numbers under US names are metric
        std::span<const UploadField> fields;
        bool has(std::string_view name) const;
    };
    bool isMetric(std::span<const UploadField> fields) const;
    static PacketReading known(const Upload& upload, const UploadField& field, const WireKeyFound& found,
                               const DecodeProblem& problem);
    static PacketReading unknown(const UploadField& field);
    static std::optional<PacketReading> reading(const Upload& upload, const UploadField& field,
                                                const DecodeProblem& problem);

    std::optional<std::string> m_units;
    SensorChoice m_choice;
    bool m_toldMetric = false;
};

}  // namespace vigil
