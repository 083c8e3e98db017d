#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>

#include "host/feeds/Recorded.hpp"

namespace vigil {

/// What held-back rows may take together, estimated; beyond it rows are let go earlier, so that very wide
/// rows of very many stations cannot fill the memory.
inline constexpr std::size_t kMostHeldBytes = std::size_t{1} << 30;

/// Puts the rows of each station in the order of their time: holds back so many rows of each, and lets go the
/// earliest. Rows of equal time keep their order. What comes out of different stations is in no promised
/// order. A row earlier than one of its station that has been let go is told and left out.
class OrderWindow {
  public:
    /// With 0 rows everything passes as it comes.
    OrderWindow(std::size_t rows, ProblemTeller tell, std::size_t mostHeldBytes = kMostHeldBytes);

    void add(RecordedNotification notification);
    /// The next that is let go, or nothing as long as more must be added first.
    std::optional<RecordedNotification> take();
    /// Nothing more will be added: lets go everything, all stations together in the order of time.
    void finish();

  private:
    struct Station {
        std::multimap<Date, RecordedNotification> held;
        std::optional<Date> last;
    };
    void letGo(Station& station);

    std::size_t m_rows;
    ProblemTeller m_tell;
    std::size_t m_mostHeldBytes;
    std::size_t m_heldBytes = 0;
    std::unordered_map<std::string, Station> m_stations;
    std::deque<RecordedNotification> m_ready;
};

}  // namespace vigil
