#include "host/run/ProcessMemory.hpp"

#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

namespace vigil {
#ifdef __GLIBC__
namespace {

// A pool a thread keeps what one thread once needed from all others. Two strands, the writers and the feeds
// seldom meet in so many.
constexpr int kPools = 4;
// By itself glibc moves this bound up to the largest piece that was ever freed, and then a rare long text
// stays in the process for good.
constexpr int kLargePiece = 256 * 1024;

}  // namespace

void prepareMemory() {
    // An answer of 0 leaves things as they were, which is only less thrifty.
    static_cast<void>(mallopt(M_ARENA_MAX, kPools));
    static_cast<void>(mallopt(M_MMAP_THRESHOLD, kLargePiece));
}

void trimMemory() {
    static_cast<void>(malloc_trim(0));
}
#else
void prepareMemory() {}
void trimMemory() {}
#endif

}  // namespace vigil
