#include "host/feeds/live/Feed.hpp"

namespace vigil {

Feed::~Feed() = default;

}  // namespace vigil
