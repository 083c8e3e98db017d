// A feed's text: what is refused is refused with a place in it, what is accepted is shown to people as a feed
// of the same shape, and what is shown can be shown again.

#include <string>

#include "fuzz/Law.hpp"
#include "host/feeds/FeedUrl.hpp"
#include "platform/Files.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vigil;
    const auto text = fuzz::textOf(data, size);
    const auto url = FeedUrl::parse(text);
    if (!url) {
        const std::string& reason = url.error().message;
        constexpr std::string_view kBegin = "feed, byte ";
        fuzz::require(reason.starts_with(kBegin), "a refusal says where");
        fuzz::require(std::stoul(reason.substr(kBegin.size())) <= size, "the place is in the text");
        return 0;
    }
    const FeedUrl& feed = url.value();
    fuzz::require(feed.written == text, "a feed keeps its text");
    fuzz::require(isValidUtf8(feed.path) && isValidUtf8(feed.user), "what has been decoded is UTF-8");
    const bool hasAddress = feed.kind >= FeedUrl::Kind::Upload && feed.kind != FeedUrl::Kind::Exec;
    fuzz::require(hasAddress == (feed.port != 0 && !feed.host.empty()), "an address has a host and a port");
    fuzz::require((feed.kind == FeedUrl::Kind::Exec) != feed.words.empty(),
                  "a program, and nothing else, has words");
    const auto shown = FeedUrl::parse(feed.masked());
    // A mask may be a little longer than what it hides.
    if (feed.masked().size() > kLongestFeedUrl) return 0;
    fuzz::require(static_cast<bool>(shown), "what people see is a feed");
    fuzz::require(shown.value().masked() == feed.masked(), "what has been masked stays as it is");
    fuzz::require(shown.value().kind == feed.kind && shown.value().path == feed.path &&
                      shown.value().words.size() == feed.words.size() &&
                      shown.value().options.size() == feed.options.size(),
                  "people see a feed of the same shape");
    return 0;
}
