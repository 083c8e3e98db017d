#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/feeds/FeedUrl.hpp"

namespace vigil {

// How FeedUrl is read, stage by stage. Only FeedUrl's own sources include this.

/// A part of a feed's text and the byte at which it begins there.
struct FeedPart {
    std::string_view text;
    std::size_t at = 0;

    FeedPart part(std::size_t from, std::size_t count = std::string_view::npos) const {
        return {text.substr(from, count), at + from};
    }
    std::size_t end() const { return at + text.size(); }
};

/// "feed, byte 12: reason"
Error refusedFeed(std::size_t byte, std::string_view reason);

/// With each "%41" replaced by its byte. What is decoded is UTF-8 without NUL.
Result<std::string> decodedFeedPart(FeedPart part);

/// "simulated", "csv", …
std::string_view feedKindName(FeedUrl::Kind kind);

/// Reads "name=value&name=value" into the URL's options, judged by its kind.
Result<Done> readFeedOptions(FeedUrl& url, FeedPart part);

/// Words as a shell tells them apart: blanks between them, '…', "…" and \ quote; nothing is expanded, and
/// what a shell would do something else with (| & ; < > and parentheses) has to be quoted.
Result<std::vector<std::string>> feedWords(FeedPart part);

/// What stands behind "upload://", "mqtt://" and "mqtts://" up to the options.
Result<Done> readFeedAddress(FeedUrl& url, FeedPart part);

}  // namespace vigil
