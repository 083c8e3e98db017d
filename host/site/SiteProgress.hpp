#pragma once

#include <cstddef>
#include <functional>

namespace vigil {

/// Told while something long goes on: what, and how far of how much (0: nobody knows). May be absent. On the
/// thread of the one who asked for the work.
using SiteProgress = std::function<void(const char* what, std::size_t done, std::size_t all)>;

inline void tellProgress(const SiteProgress& progress, const char* what, std::size_t done, std::size_t all) {
    if (progress) progress(what, done, all);
}

}  // namespace vigil
