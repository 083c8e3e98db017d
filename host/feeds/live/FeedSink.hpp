#pragma once

#include <string>

#include "host/feeds/wire/Decoder.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// How a feed is doing, for people.
struct FeedState {
    enum Kind {
        Starting,
        Live,      ///< connected, listening, following
        Retrying,  ///< something is wrong, and it tries again by itself
        Ended,     ///< a recorded file is over
        Failed,    ///< it cannot go on without the user
    };
    Kind kind = Starting;
    std::string words{};  ///< what is wrong and what is being done, empty where the kind says it all
    Date since;
};

/// What becomes of a feed's messages; one a station. Any thread, but never two calls at a time; never waits,
/// never throws, never calls the feeds.
class FeedSink {
  public:
    virtual ~FeedSink();
    virtual void arrived(RawMessage message) = 0;
    /// Something that was left out before it became a message.
    virtual void problem(const std::string& words) = 0;
    virtual void state(FeedState state) = 0;
    /// Whether it has as much as it can hold for now. A feed that can wait without losing anything (a file, a
    /// pipe, a program, a recording) brings nothing as long as this holds; others do not ask. False unless a
    /// sink says otherwise.
    virtual bool wantsPause() const;
};

}  // namespace vigil
