#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/feeds/live/Feed.hpp"
#include "host/feeds/live/FeedLoop.hpp"
#include "host/feeds/live/FeedOutlet.hpp"
#include "host/feeds/live/FeedTiming.hpp"
#include "host/feeds/live/FollowedFile.hpp"
#include "host/feeds/live/LineCutter.hpp"

namespace vigil {

/// Brings each line that is added to a file, of a pipe or of standard input. A file that is not there is
/// waited for and then read from its beginning, and so is one that takes the place of another or has been cut
/// off. Served by a loop.
class LinesFeed final : public Feed, private FeedLoop::Member {
  public:
    /// `path` "-" is standard input. `fromStart`: a file that is there is read from its beginning.
    LinesFeed(FeedLoop& loop, std::shared_ptr<FeedOutlet> outlet, std::string path, bool fromStart,
              FeedTiming timing);
    ~LinesFeed() override;
    void askToEnd() override {}

    static constexpr int kChunksATurn = 16;  ///< so much is read before others have their turn

  private:
    using Time = FeedLoop::Time;
    enum class Read { NothingNow, More, End, Failed };

    Time serve() override;
    Time open(Time now);
    Time goOn(Time now);
    Time look(Time now);
    Time hasEnded(Time now);
    Time tryLater(const std::string& why, Time now);
    Read read();
    void tellTooLong();
    void beginWatch();
    void endWatch();

    FeedLoop& m_loop;
    const std::shared_ptr<FeedOutlet> m_outlet;
    const std::string m_path;
    const FeedTiming m_timing;

    // of the loop's thread
    std::optional<FollowedFile> m_file;
    UniqueFd m_notes;  // told by the system when an ordinary file has changed
    LineCutter m_lines{[this](std::string_view line) { return m_outlet->arrivedLine(line); },
                       [this] { tellTooLong(); }};
    bool m_fromStart, m_openedBefore = false, m_paused = false, m_over = false;
    Time m_nextLook{};
    int m_error = 0;
};

}  // namespace vigil
