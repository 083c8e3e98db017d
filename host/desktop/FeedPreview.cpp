#include "host/desktop/FeedPreview.hpp"

#include <future>
#include <utility>

#include "host/feeds/live/Feeds.hpp"
#include "host/feeds/wire/MakeDecoder.hpp"
#include "host/readings/StationReadings.hpp"
#include "host/run/Secrets.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

constexpr const char* kStation = "preview";

/// What a station would do with the feed's messages.
class Sink : public FeedSink {
  public:
    Sink(const FeedUrl& url, bool usUnits, FeedPreview::Heard heard)
        : m_decoder(makeDecoder(url)),
          m_readings({.system = usUnits ? UnitSystem::Us : UnitSystem::Metric}),
          m_heard(std::move(heard)) {}

    void arrived(RawMessage message) override {
        m_packets.clear();
        m_decoder->decode(message, m_packets,
                          [this](const std::string& words) { m_heard.words(words, true); });
        for (const Packet& packet : m_packets)
            m_readings.take(packet, systemNow());
        m_heard.readings(m_readings.current());
    }
    void problem(const std::string& words) override { m_heard.words(words, true); }
    void state(FeedState state) override {
        const bool bad = state.kind == FeedState::Retrying || state.kind == FeedState::Failed;
        const char* const kinds[] = {"starting", "live, waiting for readings", "tries again", "ended",
                                     "failed"};
        m_heard.words(kinds[state.kind] + (state.words.empty() ? std::string() : ": " + state.words), bad);
    }

  private:
    const std::unique_ptr<Decoder> m_decoder;
    StationReadings m_readings;
    const FeedPreview::Heard m_heard;
    std::vector<Packet> m_packets;
};

}  // namespace

struct FeedPreview::Ear {
    std::shared_ptr<FeedSink> sink;
    Feeds feeds;
};

FeedPreview::FeedPreview(std::string folder, Heard heard)
    : m_folder(std::move(folder)), m_heard(std::move(heard)) {}

FeedPreview::~FeedPreview() {
    // Nothing is heard any more when this is over.
    std::promise<void> ended;
    m_background.run([&] {
        m_ear.reset();
        ended.set_value();
    });
    ended.get_future().wait();
}

void FeedPreview::listen(const std::string& feed, bool usUnits) {
    m_background.run([this, feed, usUnits] {
        m_ear.reset();
        const auto url = FeedUrl::parse(feed);
        if (feed.empty() || !url) return;
        const auto secret =
            userSecrets([heard = m_heard](const std::string& why) { heard.words(why, /*bad=*/true); });
        m_ear =
            std::shared_ptr<Ear>(new Ear{std::make_shared<Sink>(url.value(), usUnits, m_heard),
                                         Feeds({.clock = systemNow, .folder = m_folder, .secret = secret})});
        if (const auto added = m_ear->feeds.add(kStation, url.value(), m_ear->sink); !added)
            m_heard.words(added.error().message, /*bad=*/true);
    });
}

}  // namespace vigil
