#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/feeds/live/FeedOutlet.hpp"

namespace vigil {

/// Which stations of a broker get a message: those whose topic is its own, or matches it where it has
/// wildcards. Any thread.
class MqttStations {
  public:
    /// What the broker is asked for.
    struct Wanted {
        std::uint64_t version = 0;          ///< another after each change
        std::map<std::string, int> topics;  ///< each once, with the best quality of service that is wanted
        /// Those to ask for anew, though others may have them: a broker sends what it retained to who asks.
        std::set<std::string> fresh;
    };

    void add(std::shared_ptr<FeedOutlet> outlet, std::string topic, int qos);
    void remove(const FeedOutlet& outlet);

    bool empty() const;
    std::uint64_t version() const;
    /// `since` is the version of which the broker knows, 0 for none.
    Wanted wanted(std::uint64_t since) const;

    /// Puts those that get a message of this topic into `found`, which is emptied before.
    void find(const std::string& topic, std::vector<std::shared_ptr<FeedOutlet>>& found) const;

    std::vector<std::shared_ptr<FeedOutlet>> all() const { return outlets(nullptr); }
    void tellAll(FeedState::Kind kind, const std::string& words) const;
    /// Those of this topic, as they wrote it.
    void tell(const std::string& topic, FeedState::Kind kind, const std::string& words) const;

  private:
    struct Station {
        std::shared_ptr<FeedOutlet> outlet;
        std::string topic;
        int qos;
        std::uint64_t version;  // with which it came
    };
    std::vector<std::shared_ptr<FeedOutlet>> outlets(const std::string* topic) const;

    mutable std::mutex m_mutex;
    std::uint64_t m_version = 0;
    std::unordered_multimap<std::string, Station> m_plain;
    std::vector<Station> m_wild;
};

}  // namespace vigil
