#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include <SQLiteCpp/SQLiteCpp.h>

#include "platform/Result.hpp"

namespace vigil {

/// The first line of a site in lines names this.
inline constexpr std::string_view kSiteLinesFormat = "vigil-site";
inline constexpr int kSiteLinesVersion = 1;

/// Whether a text begins as such lines do.
bool beginsAsSiteLines(std::string_view firstLine);

/// Reads the lines into an empty site, all of them or none. An error begins with "line N: ". Failures of the
/// library are thrown.
Result<Done> readSiteLines(std::istream& from, SQLite::Database& to);

}  // namespace vigil
