#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteProgress.hpp"

namespace vigil {

/// How many findings about pages are listed; a file that is all damage would fill the terminal.
inline constexpr int kMostPageFindings = 100;

/// Looks whether a site holds together: its pages, that every row's owner is there, that each archive and
/// each station's lists are what they should be. A sentence a finding; none: all is well. Changes nothing,
/// also while another process runs the site. An error where there is nothing to look at.
Result<std::vector<std::string>, SiteError> checkSite(const std::string& path,
                                                      const SiteProgress& progress = {});

/// How deep lists and objects of a JSON text stand inside each other; texts inside it do not count. What is
/// deeper than a program can go into is turned away by this before it is read.
std::size_t jsonDepth(std::string_view text);

/// Deeper is no archive that this program has written, and is not gone into.
inline constexpr std::size_t kMostJsonDepth = 512;

}  // namespace vigil
