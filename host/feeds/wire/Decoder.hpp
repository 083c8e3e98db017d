#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/readings/Packet.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// A message as a feed brought it. Whoever brings it appends nothing; a decoder that needs bytes behind the
/// end copies.
struct RawMessage {
    std::string
        route{};  ///< topic or path it came by, with `ready` the station's name; empty where there is none
    std::string payload{};  ///< a line, a body, the fields of a query
    Date arrived;
    bool retained = false;
    /// Of a recording: when it was recorded, whatever time its readings bear now.
    std::optional<Date> recorded{};
    /// From a feed that has readings, not bytes (a simulation, a recorded file); then `payload` is empty.
    std::shared_ptr<const Readings> ready{};
};

/// Hears what could not be read, in words with the place. On the strand. May be empty.
using DecodeProblem = std::function<void(const std::string&)>;

/// Reads messages of one form into packets.
class Decoder {
  public:
    Decoder() = default;
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    virtual ~Decoder();

    /// Appends what the message holds; a message that is not of this form is told as a problem and appends
    /// nothing. Never throws.
    virtual void decode(const RawMessage& message, std::vector<Packet>& packets,
                        const DecodeProblem& problem) = 0;
};

}  // namespace vigil
