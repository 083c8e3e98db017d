#include "host/feeds/FeedUrl.hpp"

#include <algorithm>

#include "host/feeds/FeedUrl_Parts.hpp"
#include "host/words/NearestWord.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

using Kind = FeedUrl::Kind;

struct Scheme {
    Kind kind;
    std::string_view name;
    std::string_view mark;  // what stands behind the name
};

constexpr Scheme kSchemes[] = {
    {Kind::Simulated, "simulated", ":"}, {Kind::Csv, "csv", ":"},     {Kind::Lines, "lines", ":"},
    {Kind::Upload, "upload", "://"},     {Kind::Mqtt, "mqtt", "://"}, {Kind::Mqtts, "mqtts", "://"},
    {Kind::Exec, "exec", ":"},
};

constexpr std::string_view kOffered =
    "expected simulated:, csv:FILE, lines:FILE, upload://ADDRESS:PORT/, mqtt://HOST/TOPIC, "
    "mqtts://HOST/TOPIC or exec:PROGRAM";

std::string lowered(std::string_view text) {
    std::string low(text);
    for (char& c : low)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return low;
}

/// The feed that somebody who wrote this had in mind, as the end of a sentence.
std::string hint(std::string_view text) {
    const auto colon = text.find(':');
    std::vector<std::string> names;
    for (const Scheme& scheme : kSchemes)
        names.emplace_back(scheme.name);
    const std::string near = nearestWord(lowered(text.substr(0, colon)), names);
    if (!near.empty()) return "; did you mean \"" + near + ":\"?";
    const std::string low = lowered(text);
    if (low.ends_with(".csv") || low.ends_with(".tsv")) return "; did you mean \"csv:\" in front?";
    if (low.ends_with(".jsonl") || low.ends_with(".ndjson")) return "; did you mean \"lines:\" in front?";
    return {};
}

Result<Done> checkBytes(std::string_view text) {
    if (text.size() > kLongestFeedUrl)
        return refusedFeed(kLongestFeedUrl, "more than " + std::to_string(kLongestFeedUrl) + " bytes");
    const auto control = std::find_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
    if (control != text.end())
        return refusedFeed(static_cast<std::size_t>(control - text.begin()),
                           "a control character, such as a line end or a tab");
    if (!isValidUtf8(text)) return refusedFeed(0, "not UTF-8");
    return Done{};
}

Result<Done> readExec(FeedUrl& url, FeedPart rest) {
    while (rest.text.starts_with(' '))
        rest = rest.part(1);
    if (rest.text.starts_with('[')) {
        const auto close = rest.text.find(']');
        if (close == std::string_view::npos)
            return refusedFeed(rest.end(), "expected ] behind the options, as in exec:[form=rtl433] PROGRAM");
        if (auto read = readFeedOptions(url, rest.part(1, close - 1)); !read) return read;
        rest = rest.part(close + 1);
    }
    auto words = feedWords(rest);
    if (!words) return words.error();
    url.words = std::move(words).value();
    if (url.words.empty() || url.words.front().empty())
        return refusedFeed(rest.end(), "expected a program, as in exec:rtl_433 -F json");
    return Done{};
}

Result<Done> readPath(FeedUrl& url, FeedPart part) {
    if (url.kind == Kind::Simulated) {
        if (part.text.empty()) return Done{};
        return refusedFeed(part.at, "expected nothing, or options behind ?");
    }
    if (part.text.empty())
        return refusedFeed(part.at, "expected a file, as in " + std::string(feedKindName(url.kind)) +
                                        (url.kind == Kind::Csv ? ":readings.csv" : ":readings.jsonl"));
    auto path = decodedFeedPart(part);
    if (!path) return path.error();
    url.path = std::move(path).value();
    return Done{};
}

Result<Done> readBehindScheme(FeedUrl& url, FeedPart rest) {
    if (url.kind == Kind::Exec) return readExec(url, rest);
    const auto mark = rest.text.find('?');
    const FeedPart front = rest.part(0, mark);
    const bool hasAddress = url.kind >= Kind::Upload;
    if (auto read = hasAddress ? readFeedAddress(url, front) : readPath(url, front); !read) return read;
    if (mark == std::string_view::npos) return Done{};
    return readFeedOptions(url, rest.part(mark + 1));
}

}  // namespace

std::string_view feedKindName(Kind kind) {
    for (const Scheme& scheme : kSchemes)
        if (scheme.kind == kind) return scheme.name;
    return {};
}

Error refusedFeed(std::size_t byte, std::string_view reason) {
    return {"feed, byte " + std::to_string(byte) + ": " + std::string(reason)};
}

std::optional<std::string> FeedUrl::option(std::string_view name) const {
    for (const auto& [known, value] : options)
        if (known == name) return value;
    return std::nullopt;
}

std::vector<std::string> FeedUrl::allOptions(std::string_view name) const {
    std::vector<std::string> found;
    for (const auto& [known, value] : options)
        if (known == name) found.push_back(value);
    return found;
}

Result<FeedUrl> FeedUrl::parse(std::string_view text) {
    if (auto checked = checkBytes(text); !checked) return checked.error();
    for (const Scheme& scheme : kSchemes) {
        if (!text.starts_with(scheme.name) || text.substr(scheme.name.size(), 1) != ":") continue;
        const FeedPart behind = FeedPart{text}.part(scheme.name.size());
        if (!behind.text.starts_with(scheme.mark))
            return refusedFeed(behind.at, "expected :// behind " + std::string(scheme.name));
        FeedUrl url{.kind = scheme.kind, .written = std::string(text)};
        if (auto read = readBehindScheme(url, behind.part(scheme.mark.size())); !read) return read.error();
        return url;
    }
    return refusedFeed(0, std::string(kOffered) + hint(text));
}

}  // namespace vigil
