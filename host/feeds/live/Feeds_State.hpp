#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "host/feeds/live/Feed.hpp"
#include "host/feeds/live/FeedLoop.hpp"
#include "host/feeds/live/FeedOutlet.hpp"
#include "host/feeds/live/Feeds.hpp"
#include "host/feeds/live/MqttClient.hpp"
#include "host/feeds/live/UploadListener.hpp"

namespace vigil {

// The insides of the feeds. Everything is of the thread that adds and removes, apart from what the mutex
// guards. What no station uses is not there: no thread, no library begun.
struct Feeds::State {
    explicit State(Context given) : context(std::move(given)) {}

    struct Entry {
        std::shared_ptr<FeedOutlet> outlet;
        std::unique_ptr<Feed> feed;
        bool readsStandardInput = false;
    };
    /// All of them are asked to end before the first is waited for.
    static void end(const std::map<std::string, Entry>& gone);

    using Made = Result<std::unique_ptr<Feed>>;
    using Outlet = std::shared_ptr<FeedOutlet>;

    Made make(const FeedUrl& url, const Outlet& outlet);
    Made makeSimulated(const FeedUrl& url, const Outlet& outlet);
    Made makeCsv(const FeedUrl& url, const Outlet& outlet);
    Made makeLines(const FeedUrl& url, const Outlet& outlet);
    Made makeExec(const FeedUrl& url, const Outlet& outlet);
    Made makeUpload(const FeedUrl& url, const Outlet& outlet);
    Made makeMqtt(const FeedUrl& url, const Outlet& outlet);

    Result<FeedLoop*> loop(std::unique_ptr<FeedLoop>& which, const char* threadName);
    std::string inFolder(const std::string& path) const;

    const Context context;
    // A disk that is slow to give a recording must not hold up the lines of a program.
    std::unique_ptr<FeedLoop> streams;     // programs, files that grow, and the opening of ports
    std::unique_ptr<FeedLoop> recordings;  // and simulations
    std::map<std::pair<std::string, std::uint16_t>, std::weak_ptr<UploadListener>> listeners;
    std::map<MqttAddress, std::weak_ptr<MqttClient>> clients;

    mutable std::mutex mutex;  // of which entries there are
    std::map<std::string, Entry> entries;
};

}  // namespace vigil
