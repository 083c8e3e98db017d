#pragma once

namespace vigil {

/// Sets the allocator up for a process that runs for months: few pools, and large pieces that go back to the
/// system once they are free. Before any other thread is there; does nothing where the C library is not
/// glibc.
void prepareMemory();

/// Gives back to the system what is free now. Takes milliseconds, in which allocations wait; for moments
/// after which less is needed than before. Any thread.
void trimMemory();

}  // namespace vigil
