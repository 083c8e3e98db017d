#include "host/feeds/live/FeedSink.hpp"

namespace vigil {

FeedSink::~FeedSink() = default;

bool FeedSink::wantsPause() const {
    return false;
}

}  // namespace vigil
