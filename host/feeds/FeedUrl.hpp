#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Result.hpp"

namespace vigil {

/// Where a station's readings come from, as a text that people write and the site file keeps.
struct FeedUrl {
    enum class Kind { Simulated, Csv, Lines, Upload, Mqtt, Mqtts, Exec };

    Kind kind = Kind::Simulated;
    std::string written{};             ///< as it was given
    std::string host{};                ///< Upload, Mqtt: name or address, an IPv6 one without brackets
    std::uint16_t port = 0;            ///< Upload, Mqtt: as given or the form's own
    std::string path{};                ///< Csv, Lines: the file; Mqtt: the topic, decoded; Upload: the path
    std::vector<std::string> words{};  ///< Exec: the program and its arguments
    std::vector<std::pair<std::string, std::string>> options{};  ///< behind "?", decoded, in their order

    /// The first option of that name, or nothing.
    std::optional<std::string> option(std::string_view name) const;

    /// An error has the byte at which it stands: "feed, byte 12: …", and says what is offered.
    static Result<FeedUrl> parse(std::string_view text);

    /// For people: passwords and identities that a stranger could use read "***".
    std::string masked() const;
};

}  // namespace vigil
