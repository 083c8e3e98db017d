#pragma once

namespace vigil::bench {

/// How often this thread has asked for memory so far. Programs that link AllocationCount.cpp count.
long allocationsSoFar();

}  // namespace vigil::bench
