#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

#include "host/feeds/FeedUrl_Parts.hpp"
#include "host/words/NearestWord.hpp"

namespace vigil {
namespace {

using Kind = FeedUrl::Kind;

constexpr unsigned in(Kind kind) {
    return 1U << static_cast<unsigned>(kind);
}
constexpr unsigned kBrokers = in(Kind::Mqtt) | in(Kind::Mqtts);
constexpr unsigned kTexts = kBrokers | in(Kind::Lines) | in(Kind::Exec);  // whose messages have several forms

/// What is wrong with a value, or nothing.
using Check = const char* (*)(std::string_view value);

const char* isThere(std::string_view value) {
    return value.empty() ? "expected a value" : nullptr;
}

const char* isWhole(std::string_view value) {
    std::uint64_t number = 0;
    const char* end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? nullptr : "expected a whole number from 0";
}

const char* isAboveZero(std::string_view value) {
    double number = 0;
    const char* end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    const bool good = read.ec == std::errc() && read.ptr == end && std::isfinite(number) && number > 0;
    return good ? nullptr : "expected a number above 0";
}

const char* isSpeed(std::string_view value) {
    return value == "0" || !isAboveZero(value) ? nullptr : "expected a number above 0, or 0 for no pauses";
}

const char* isShift(std::string_view value) {
    return value == "now" || value == "keep" ? nullptr : "expected now or keep";
}

const char* isBegin(std::string_view value) {
    return value == "start" || value == "end" ? nullptr : "expected start or end";
}

const char* isQos(std::string_view value) {
    return value == "0" || value == "1" ? nullptr : "expected 0 or 1";
}

const char* isForm(std::string_view value) {
    return value == "lines" || value == "weewx" || value == "rtl433" ? nullptr
                                                                     : "expected lines, weewx or rtl433";
}

const char* isSystem(std::string_view value) {
    return value == "metric" || value == "us" ? nullptr : "expected metric or us";
}

const char* isWeewxSystem(std::string_view value) {
    return value == "metricwx" || !isSystem(value) ? nullptr : "expected us, metric or metricwx";
}

const char* isZone(std::string_view value) {
    return value == "local" || value == "utc" ? nullptr : "expected local or utc";
}

const char* isSecretName(std::string_view value) {
    const bool good =
        !value.empty() && value.size() <= 64 && std::all_of(value.begin(), value.end(), [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
                   c == '-' || c == '.';
        });
    return good ? nullptr : "expected the name of a secret: letters, digits, _, - and . (at most 64)";
}

const char* isSeparator(std::string_view value) {
    const bool good =
        value == "tab" || (value.size() == 1 && value[0] > ' ' && value[0] < 0x7F && value[0] != '"');
    return good ? nullptr : "expected one character, or tab";
}

struct Rule {
    std::string_view name;
    unsigned kinds;
    Check check;
    bool repeats = false;
};

constexpr Rule kRules[] = {
    {"seed", in(Kind::Simulated), isWhole},
    {"speed", in(Kind::Simulated) | in(Kind::Csv), isSpeed},
    {"shift", in(Kind::Csv), isShift},
    {"from", in(Kind::Lines), isBegin},
    {"step", in(Kind::Simulated), isAboveZero},
    {"time-column", in(Kind::Csv), isThere},
    {"station-column", in(Kind::Csv), isThere},
    {"separator", in(Kind::Csv), isSeparator},
    {"units", in(Kind::Csv) | in(Kind::Upload), isSystem},
    {"station", in(Kind::Csv) | kTexts, isThere},
    {"id", in(Kind::Upload), isThere},
    {"form", kTexts, isForm},
    {"units", kTexts, isWeewxSystem},
    {"time", kTexts, isZone},
    {"sensor", kTexts | in(Kind::Upload), isThere, true},
    {"inside", kTexts | in(Kind::Upload), isThere, true},
    {"secret", kBrokers, isSecretName},
    {"client", kBrokers, isThere},
    {"qos", kBrokers, isQos},
    {"ca", in(Kind::Mqtts), isThere},
};

const Rule* ruleFor(Kind kind, std::string_view name) {
    const auto* found = std::find_if(std::begin(kRules), std::end(kRules), [&](const Rule& rule) {
        return (rule.kinds & in(kind)) != 0 && rule.name == name;
    });
    return found == std::end(kRules) ? nullptr : found;
}

Error unknownOption(Kind kind, FeedPart name) {
    std::vector<std::string> offered;
    std::string list;
    for (const Rule& rule : kRules) {
        if ((rule.kinds & in(kind)) == 0) continue;
        offered.emplace_back(rule.name);
        (list += list.empty() ? "" : ", ") += rule.name;
    }
    const std::string scheme(feedKindName(kind));
    if (name.text.empty()) return refusedFeed(name.at, "expected an option of " + scheme + ": " + list);
    std::string reason = "\"" + std::string(name.text) + "\" is no option of " + scheme;
    const std::string near = nearestWord(name.text, offered);
    reason += near.empty() ? "; expected " + list : "; did you mean \"" + near + "\"?";
    return refusedFeed(name.at, reason);
}

Result<Done> readOption(FeedUrl& url, FeedPart part) {
    const auto equals = part.text.find('=');
    const FeedPart name = part.part(0, equals);
    const Rule* rule = ruleFor(url.kind, name.text);
    if (!rule) return unknownOption(url.kind, name);
    const std::string quoted = "\"" + std::string(name.text) + "\"";
    if (equals == std::string_view::npos)
        return refusedFeed(part.end(), "expected = and a value behind " + quoted);
    if (!rule->repeats && url.option(rule->name)) return refusedFeed(name.at, quoted + " stands there twice");
    const FeedPart given = part.part(equals + 1);
    auto value = decodedFeedPart(given);
    if (!value) return value.error();
    if (const char* wrong = rule->check(value.value())) return refusedFeed(given.at, quoted + ": " + wrong);
    url.options.emplace_back(rule->name, std::move(value).value());
    return Done{};
}

}  // namespace

Result<Done> readFeedOptions(FeedUrl& url, FeedPart part) {
    if (part.text.empty()) return Done{};
    for (;;) {
        const auto end = part.text.find('&');
        if (auto read = readOption(url, part.part(0, end)); !read) return read;
        if (end == std::string_view::npos) return Done{};
        part = part.part(end + 1);
    }
}

}  // namespace vigil
