#include "host/feeds/Recorded.hpp"

namespace vigil {

RecordedSource::~RecordedSource() = default;

}  // namespace vigil
