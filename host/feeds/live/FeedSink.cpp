#include "host/feeds/live/FeedSink.hpp"

namespace vigil {

FeedSink::~FeedSink() = default;

}  // namespace vigil
