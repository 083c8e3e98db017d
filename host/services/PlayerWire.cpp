#include "host/services/PlayerWire.hpp"

#include <utility>

#include "host/services/HelperWire.hpp"

namespace vigil {
namespace {

constexpr char kSetup = 'O';
constexpr std::string_view kKinds = "CPSXQVBEA";

}  // namespace

std::string encodePlayerSetup(const PlayerSetup& setup) {
    WireWriter writer(kSetup);
    writer.number(kPlayerWireVersion).text(setup.device).text(setup.program).text(setup.voice);
    writer.text(setup.language).number(setup.rate).number(setup.programTime);
    return writer.take();
}

std::optional<PlayerSetup> decodePlayerSetup(std::string_view message) {
    WireReader reader(message);
    if (reader.kind() != kSetup || reader.number() != kPlayerWireVersion) return std::nullopt;
    PlayerSetup setup;
    setup.device = reader.text();
    setup.program = reader.text();
    setup.voice = reader.text();
    setup.language = reader.text();
    setup.rate = reader.number();
    setup.programTime = reader.number();
    return reader.complete() ? std::optional(std::move(setup)) : std::nullopt;
}

std::string encodePlayerMessage(const PlayerMessage& message) {
    WireWriter writer(message.kind);
    writer.longNumber(message.id).number(message.number).text(message.text);
    return writer.take();
}

std::optional<PlayerMessage> decodePlayerMessage(std::string_view message) {
    WireReader reader(message);
    if (reader.kind() == '\0' || kKinds.find(reader.kind()) == std::string_view::npos) return std::nullopt;
    PlayerMessage made;
    made.kind = static_cast<PlayerMessage::Kind>(reader.kind());
    made.id = reader.longNumber();
    made.number = reader.number();
    made.text = reader.text();
    const bool tellsOutcome = made.kind == PlayerMessage::Ended || made.kind == PlayerMessage::Verdict;
    if (!reader.complete() || (tellsOutcome && made.number >= kPlayOutcomes)) return std::nullopt;
    return made;
}

}  // namespace vigil
