#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/feeds/live/FeedOutlet.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// Which station of a port gets an upload. One that names an identity gets the uploads of this one alone. The
/// others share what nobody names: a single one gets all of it; where there are several, each keeps the first
/// identity that it was given for as long as it is here, in the order in which they came. Any thread.
class UploadStations {
  public:
    /// Identities are the same in any case of letters. An error where another station names the same one.
    Result<Done> add(std::shared_ptr<FeedOutlet> outlet, std::optional<std::string> identity);
    void remove(const FeedOutlet& outlet);

    /// Nothing when no station takes it.
    std::shared_ptr<FeedOutlet> claim(std::string_view identity);
    std::vector<std::shared_ptr<FeedOutlet>> all() const;

  private:
    struct Station {
        std::shared_ptr<FeedOutlet> outlet;
        std::optional<std::string> named;  // by its URL
        std::optional<std::string> heard;  // first, where it names none
    };

    mutable std::mutex m_mutex;
    std::vector<Station> m_stations;
};

}  // namespace vigil
