#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteProgress.hpp"
#include "platform/Result.hpp"

// Copies of a site, as a database or as lines of JSON (docs/formats/site.md), and the way back.

namespace vigil {

/// Takes a piece of text; false where it could not be written.
using LineSink = std::function<bool(std::string_view)>;

/// The site as it is now as one database file, also while another process runs it. A file in its place stays
/// unless it may be replaced; until the copy is complete it bears another name.
Result<Done> exportSite(const std::string& site, const std::string& to, bool replace,
                        const SiteProgress& progress = {});

/// The same as lines, each with its end.
Result<Done> exportSiteLines(const std::string& site, const LineSink& sink,
                             const SiteProgress& progress = {});

/// Behind the name of a file that is in the way.
inline constexpr const char* kIsThere = "is there already, and was left as it is";

/// What a copy brought.
struct Imported {
    enum class Form { Database, Lines, Monitors };
    Form form = Form::Database;
    std::size_t stations = 0;  ///< of Monitors: new ones, without a feed
    std::size_t plugIns = 0;
};

/// Makes `site` what the copy says. A site in its place stays unless it may be replaced. Monitors of the form
/// that earlier versions kept (docs/formats/monitors.md) are added to the site instead, which is made where
/// it is not there; a title that is taken is an error. All or nothing, and what was there stays until all has
/// been read and checked. An error names the file and the line or the finding. Refused while another process
/// runs the site.
Result<Imported> importSite(const std::string& from, const std::string& site, bool replace,
                            const SiteProgress& progress = {});

/// Gives unused space back to the disk, by writing the site anew in its place. Refused while another process
/// runs it.
Result<Done, SiteError> vacuumSite(const std::string& site);

}  // namespace vigil
