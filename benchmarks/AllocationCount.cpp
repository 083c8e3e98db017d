#include "benchmarks/AllocationCount.hpp"

#include <cstdlib>
#include <new>

namespace {

thread_local long t_allocations = 0;

void* counted(std::size_t bytes) {
    ++t_allocations;
    if (void* memory = std::malloc(bytes ? bytes : 1)) return memory;
    throw std::bad_alloc();
}

}  // namespace

// The forms for arrays and those that do not throw come down to these.
void* operator new(std::size_t bytes) {
    return counted(bytes);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace vigil::bench {

long allocationsSoFar() {
    return t_allocations;
}

}  // namespace vigil::bench
