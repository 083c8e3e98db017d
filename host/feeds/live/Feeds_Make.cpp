#include <utility>

#include "host/feeds/live/ExecFeed.hpp"
#include "host/feeds/live/FeedOptions.hpp"
#include "host/feeds/live/Feeds_State.hpp"
#include "host/feeds/live/LinesFeed.hpp"
#include "host/services/ScriptRunner.hpp"

// What each kind of URL makes run; recordings are in Feeds_Recordings.cpp.

namespace vigil {
namespace {

/// A station's share of a listener or of a client, which ends with the last of them.
template <class Shared>
class ShareFeed final : public Feed {
  public:
    ShareFeed(std::shared_ptr<Shared> shared, std::shared_ptr<FeedOutlet> outlet)
        : m_shared(std::move(shared)), m_outlet(std::move(outlet)) {}
    ~ShareFeed() override { leave(); }
    void askToEnd() override {
        leave();
        if constexpr (requires { m_shared->askToEndIfIdle(); }) m_shared->askToEndIfIdle();
    }

  private:
    void leave() {
        if (!std::exchange(m_left, true)) m_shared->remove(*m_outlet);
    }

    const std::shared_ptr<Shared> m_shared;
    const std::shared_ptr<FeedOutlet> m_outlet;
    bool m_left = false;
};

}  // namespace

Feeds::State::Made Feeds::State::make(const FeedUrl& url, const Outlet& outlet) {
    switch (url.kind) {
        case FeedUrl::Kind::Simulated:
            return makeSimulated(url, outlet);
        case FeedUrl::Kind::Csv:
            return makeCsv(url, outlet);
        case FeedUrl::Kind::Lines:
            return makeLines(url, outlet);
        case FeedUrl::Kind::Exec:
            return makeExec(url, outlet);
        case FeedUrl::Kind::Upload:
            return makeUpload(url, outlet);
        case FeedUrl::Kind::Mqtt:
        case FeedUrl::Kind::Mqtts:
            return makeMqtt(url, outlet);
    }
    return Error{"feed: of a kind that is not known"};
}

Feeds::State::Made Feeds::State::makeLines(const FeedUrl& url, const Outlet& outlet) {
    const auto from = FeedOptions(url).word("from", {"end", "start"});
    if (!from) return from.error();
    const auto served = loop(streams, "feed-streams");
    if (!served) return served.error();
    return std::unique_ptr<Feed>(std::make_unique<LinesFeed>(*served.value(), outlet, inFolder(url.path),
                                                             from.value() == "start", context.timing));
}

Feeds::State::Made Feeds::State::makeExec(const FeedUrl& url, const Outlet& outlet) {
    if (url.words.empty()) return Error{"feed: no program; expected one, as in exec:rtl_433 -F json"};
    const auto served = loop(streams, "feed-streams");
    if (!served) return served.error();
    ChildProcess::Plan plan{url.words, context.folder, inheritedEnvironment()};
    return std::unique_ptr<Feed>(
        std::make_unique<ExecFeed>(*served.value(), outlet, std::move(plan), context.timing));
}

Feeds::State::Made Feeds::State::makeUpload(const FeedUrl& url, const Outlet& outlet) {
    std::erase_if(listeners, [](const auto& entry) { return entry.second.expired(); });
    auto& known = listeners[{url.host, url.port}];
    std::shared_ptr<UploadListener> listener = known.lock();
    if (!listener) {
        const auto served = loop(streams, "feed-streams");
        if (!served) return served.error();
        auto started = UploadListener::start(*served.value(), url.host, url.port, context.timing);
        if (!started) return started.error();
        listener = std::move(started).value();
        known = listener;
    }
    if (auto added = listener->add(outlet, FeedOptions(url).text("id")); !added) return added.error();
    return std::unique_ptr<Feed>(std::make_unique<ShareFeed<UploadListener>>(std::move(listener), outlet));
}

Feeds::State::Made Feeds::State::makeMqtt(const FeedUrl& url, const Outlet& outlet) {
    const FeedOptions options(url);
    const auto qos = options.number("qos", 0, 0, 2);
    if (!qos) return qos.error();
    const MqttAddress address{.host = url.host,
                              .port = url.port,
                              .isSecure = url.kind == FeedUrl::Kind::Mqtts,
                              .ca = inFolder(options.text("ca").value_or("")),
                              .user = url.user,
                              .secret = options.text("secret").value_or(""),
                              .client = options.text("client").value_or("")};
    std::erase_if(clients, [](const auto& entry) { return entry.second.expired(); });
    auto& known = clients[address];
    std::shared_ptr<MqttClient> client = known.lock();
    if (!client) {
        client = std::make_shared<MqttClient>(address, context.secret, context.timing);
        known = client;
    }
    if (auto added = client->add(outlet, url.path, static_cast<int>(qos.value())); !added)
        return added.error();
    return std::unique_ptr<Feed>(std::make_unique<ShareFeed<MqttClient>>(std::move(client), outlet));
}

}  // namespace vigil
