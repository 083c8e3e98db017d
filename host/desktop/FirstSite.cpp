#include "host/desktop/FirstSite.hpp"

#include <filesystem>
#include <system_error>

#include "host/site/SiteFile.hpp"

namespace vigil {

Result<Done> makeEmptySite(const std::string& path) {
    return SiteFile::create(path);
}

Result<bool> makeFirstSite(const std::string& path) {
    std::error_code unknown;  // then it is not there
    if (std::filesystem::exists(path, unknown)) return false;
    const StationRecord station{.name = "Simulated station",
                                .feed = "simulated:",
                                .units = {{"windSpeed", "km/h"}, {"windGust", "km/h"}}};
    if (auto made = SiteFile::create(path, {station}); !made) return made.error();
    // Who first writes to a site waits for its log to be set up; better here than in the window.
    if (auto written = SiteFile::open(path, Access::Edit); !written) return Error{written.error().message};
    return true;
}

std::future<Result<bool>> makeFirstSiteMeanwhile(const std::string& path) {
    return std::async(std::launch::async, makeFirstSite, path);
}

}  // namespace vigil
