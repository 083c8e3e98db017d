#pragma once

#include <cstddef>
#include <memory>

#include "platform/Object.hpp"

// The border between a host and a module: one C function that gives the module's classes, and a text that
// says with what the module was built. Only `std::` exceptions cross it.

namespace vigil {

inline constexpr int kContractMajor = 1;  ///< a host takes modules of its own major number
inline constexpr int kContractMinor = 0;  ///< and of at most its own minor number

struct ModuleClass {
    const char* name;
    std::shared_ptr<Object> (*make)();  ///< a fresh object, not yet initialised
};

struct ModuleTable {
    int contractMajor;
    int contractMinor;
    const char* abi;  ///< VIGIL_ABI of the module's own build
    const ModuleClass* classes;
    std::size_t classCount;
};

using ModuleEntry = const ModuleTable* (*)();

/// The symbol that a module exports, of type `ModuleEntry`. It may throw; the host then refuses the module.
inline constexpr const char* kModuleEntrySymbol = "vigilPlugInModule";

}  // namespace vigil

// The compiler family, the standard library with its ABI, and the sanitizer. A host and a module whose texts
// differ would misread each other's objects. g++ and clang share one C++ ABI, so they are one family here.
#define VIGIL_ABI_TEXT_(x) #x
#define VIGIL_ABI_TEXT(x) VIGIL_ABI_TEXT_(x)

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VIGIL_ABI_SANITIZER "address"
#elif __has_feature(thread_sanitizer)
#define VIGIL_ABI_SANITIZER "thread"
#endif
#endif
#if !defined(VIGIL_ABI_SANITIZER) && defined(__SANITIZE_ADDRESS__)
#define VIGIL_ABI_SANITIZER "address"
#elif !defined(VIGIL_ABI_SANITIZER) && defined(__SANITIZE_THREAD__)
#define VIGIL_ABI_SANITIZER "thread"
#elif !defined(VIGIL_ABI_SANITIZER)
#define VIGIL_ABI_SANITIZER "none"
#endif

#define VIGIL_ABI \
    "gnu libstdc++ cxx11=" VIGIL_ABI_TEXT(_GLIBCXX_USE_CXX11_ABI) " sanitizer=" VIGIL_ABI_SANITIZER
