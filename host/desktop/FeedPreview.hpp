#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/desktop/Background.hpp"
#include "host/feeds/live/FeedSink.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// Listens to a feed for a while, so that people see what arrives before they keep it. Main thread; starting
/// and ending wait on a thread of their own.
class FeedPreview {
  public:
    /// Both are called on the feed's threads. `words` tells how the feed is doing, or what cannot be read.
    struct Heard {
        std::function<void(std::shared_ptr<const Readings>)> readings;
        std::function<void(std::string words, bool bad)> words;
    };

    /// `folder` is that of the site, for relative paths.
    FeedPreview(std::string folder, Heard heard);
    FeedPreview(const FeedPreview&) = delete;
    FeedPreview& operator=(const FeedPreview&) = delete;
    ~FeedPreview();

    /// Ends what was heard before and listens to this one; an empty text to none.
    void listen(const std::string& feed, bool usUnits);

  private:
    struct Ear;

    const std::string m_folder;
    const Heard m_heard;
    std::shared_ptr<Ear> m_ear;  // of the background's thread
    Background m_background;
};

}  // namespace vigil
