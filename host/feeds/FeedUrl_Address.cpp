#include <algorithm>
#include <charconv>

#include "host/feeds/FeedUrl_Parts.hpp"

namespace vigil {
namespace {

using Kind = FeedUrl::Kind;

constexpr std::uint16_t kMqttPort = 1883;
constexpr std::uint16_t kMqttsPort = 8883;
/// What the protocol gives a topic.
constexpr std::size_t kLongestTopic = 65535;

bool isUpload(const FeedUrl& url) {
    return url.kind == Kind::Upload;
}

bool isHostCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '-' || c == '_';
}

bool isInnerCharacter(char c) {
    return isHostCharacter(c) || c == ':' || c == '%';
}

Result<Done> readUser(FeedUrl& url, FeedPart part) {
    if (isUpload(url)) return refusedFeed(part.at, "an upload is told by its id, not by a user; write ?id=");
    if (const auto colon = part.text.find(':'); colon != std::string_view::npos)
        return refusedFeed(part.at + colon,
                           "a password does not stand in a feed, where everybody reads it; keep "
                           "it as a secret and write ?secret=NAME");
    auto user = decodedFeedPart(part);
    if (!user) return user.error();
    if (user.value().empty()) return refusedFeed(part.at, "expected a user in front of @");
    url.user = std::move(user).value();
    return Done{};
}

Result<Done> readPort(FeedUrl& url, FeedPart part) {
    unsigned port = 0;
    const char* end = part.text.data() + part.text.size();
    const auto read = std::from_chars(part.text.data(), end, port);
    if (part.text.empty() || read.ec != std::errc() || read.ptr != end || port < 1 || port > 65535)
        return refusedFeed(part.at, "expected a port from 1 to 65535");
    url.port = static_cast<std::uint16_t>(port);
    return Done{};
}

/// "[::1]:80", "name:80", "name"
Result<Done> readHostAndPort(FeedUrl& url, FeedPart part) {
    const char* what = isUpload(url) ? "expected an address, as in upload://127.0.0.1:8090/"
                                     : "expected a host, as in mqtt://localhost/weather/loop";
    FeedPart behind = part;
    if (part.text.starts_with('[')) {
        const auto close = part.text.find(']');
        if (close == std::string_view::npos) return refusedFeed(part.end(), "expected ] behind the address");
        const FeedPart inner = part.part(1, close - 1);
        const auto bad = std::find_if_not(inner.text.begin(), inner.text.end(), isInnerCharacter);
        if (bad != inner.text.end() || inner.text.find(':') == std::string_view::npos)
            return refusedFeed(inner.at, "expected an IPv6 address between brackets");
        url.host = inner.text;
        behind = part.part(close + 1);
    } else {
        const auto stop = std::find_if_not(part.text.begin(), part.text.end(), isHostCharacter);
        const auto length = static_cast<std::size_t>(stop - part.text.begin());
        if (length == 0) return refusedFeed(part.at, what);
        url.host = part.text.substr(0, length);
        behind = part.part(length);
        if (behind.text.find(':') != behind.text.rfind(':'))
            return refusedFeed(part.at, "an IPv6 address stands in brackets, as in [::1]");
    }
    if (behind.text.starts_with(':')) return readPort(url, behind.part(1));
    if (!behind.text.empty()) return refusedFeed(behind.at, "expected a port, or / behind the host");
    if (isUpload(url))
        return refusedFeed(behind.at, "expected the port to listen on, as in upload://127.0.0.1:8090/");
    url.port = url.kind == Kind::Mqtt ? kMqttPort : kMqttsPort;
    return Done{};
}

/// "+" stands for one whole level of a topic, "#" for all further ones.
Result<Done> checkTopic(const std::string& topic, FeedPart part) {
    if (topic.empty())
        return refusedFeed(part.at,
                           "expected a topic, as in mqtt://HOST/weather/loop or mqtt://HOST/weather/#");
    if (topic.size() > kLongestTopic) return refusedFeed(part.at, "a topic has at most 65535 bytes");
    for (std::size_t i = 0; i < topic.size(); ++i) {
        if (topic[i] != '+' && topic[i] != '#') continue;
        const bool begins = i == 0 || topic[i - 1] == '/';
        const bool ends = i + 1 == topic.size() || (topic[i] == '+' && topic[i + 1] == '/');
        if (!begins || !ends)
            return refusedFeed(part.at, topic[i] == '+' ? "in a topic + stands for one whole level"
                                                        : "in a topic # is the whole last level");
    }
    return Done{};
}

}  // namespace

Result<Done> readFeedAddress(FeedUrl& url, FeedPart part) {
    const auto slash = part.text.find('/');
    FeedPart authority = part.part(0, slash);
    if (const auto at = authority.text.rfind('@'); at != std::string_view::npos) {
        if (auto read = readUser(url, authority.part(0, at)); !read) return read;
        authority = authority.part(at + 1);
    }
    if (auto read = readHostAndPort(url, authority); !read) return read;
    const FeedPart path = slash == std::string_view::npos ? part.part(part.text.size()) : part.part(slash);
    auto decoded = decodedFeedPart(isUpload(url) || path.text.empty() ? path : path.part(1));
    if (!decoded) return decoded.error();
    url.path = std::move(decoded).value();
    if (!isUpload(url)) return checkTopic(url.path, path);
    if (url.path.empty()) url.path = "/";
    return Done{};
}

}  // namespace vigil
