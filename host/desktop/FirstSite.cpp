#include "host/desktop/FirstSite.hpp"

#include "host/site/SiteFile.hpp"

namespace vigil {

Result<Done> makeEmptySite(const std::string& path) {
    return SiteFile::create(path);
}

Result<Done> makeFirstSite(const std::string& path) {
    if (auto made = SiteFile::create(path); !made) return made;
    auto file = SiteFile::open(path, Access::Edit);
    if (!file) return Error{file.error().message};
    const StationRecord station{.name = "Simulated station",
                                .feed = "simulated:",
                                .units = {{"windSpeed", "km/h"}, {"windGust", "km/h"}}};
    if (auto added = file.value()->addStation(station); !added) return added.error();
    return Done{};
}

}  // namespace vigil
