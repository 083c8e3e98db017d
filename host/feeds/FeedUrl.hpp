#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Result.hpp"

namespace vigil {

/// A feed's text has at most so many bytes. Stops a site file whose feed is really something else.
inline constexpr std::size_t kLongestFeedUrl = 8192;

/// Where a station's readings come from, as a text that people write and the site file keeps
/// (docs/feeds.md has the forms). A plain value; any thread.
///
///     FeedUrl::parse("upload://127.0.0.1:8090/?id=0A1B2C")    host 127.0.0.1, port 8090, path "/"
///     FeedUrl::parse("mqtt://me@broker/weather/%23?secret=b") user me, port 1883, path "weather/#"
///     FeedUrl::parse("exec:[form=rtl433] rtl_433 -F json")    words rtl_433, -F, json
///     FeedUrl::parse("mqtt://me:pw@broker/a")                 an error that tells of secret=NAME
struct FeedUrl {
    enum class Kind { Simulated, Csv, Lines, Upload, Mqtt, Mqtts, Exec };

    Kind kind = Kind::Simulated;
    std::string written{};             ///< as it was given
    std::string user{};                ///< Mqtt: as whom to sign on, decoded; the password is option "secret"
    std::string host{};                ///< Upload, Mqtt: name or address, an IPv6 one without brackets
    std::uint16_t port = 0;            ///< Upload, Mqtt: as given or the form's own
    std::string path{};                ///< Csv, Lines: the file; Mqtt: the topic, decoded; Upload: the path
    std::vector<std::string> words{};  ///< Exec: the program and its arguments
    /// Behind "?" (Exec: in front, in brackets), decoded, in their order. All of them are known to this kind
    /// and have a value that it takes.
    std::vector<std::pair<std::string, std::string>> options{};

    /// The first option of that name, or nothing.
    std::optional<std::string> option(std::string_view name) const;
    /// All options of that name, in their order.
    std::vector<std::string> allOptions(std::string_view name) const;

    /// An error has the byte at which it stands, from 0: "feed, byte 12: …", and says what is offered. It
    /// never repeats a password.
    static Result<FeedUrl> parse(std::string_view text);

    /// For people: passwords and identities that a stranger could use read "***".
    std::string masked() const;
};

}  // namespace vigil
