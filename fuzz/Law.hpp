#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What a fuzzer calls with each input. Answers 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vigil::fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Ends the program where a law does not hold; the fuzzer keeps the input.
inline void require(bool holds, const char* law) {
    if (holds) return;
    std::fprintf(stderr, "broken law: %s\n", law);
    std::abort();
}

}  // namespace vigil::fuzz
