#include "host/site/HistoryRecords.hpp"

#include <array>
#include <utility>

#include "host/site/SiteFile.hpp"

namespace vigil {
namespace {

constexpr std::array kWatchReasons{"run", "switched", "changed", "failed", "unknown"};
constexpr std::array kArchiveReasons{"began", "edited", "saved"};

}  // namespace

std::string historyFileOf(const std::string& siteFile) {
    return siteFile + "-history";
}

std::string siteIdentity(const std::string& siteFile) {
    const auto site = SiteFile::open(siteFile, Access::Read);
    if (!site) return "";
    auto identity = site.value()->identity();
    return identity ? std::move(identity).value() : "";
}

const char* watchReasonName(WatchReason reason) {
    return kWatchReasons.at(static_cast<std::size_t>(reason));
}

WatchReason watchReasonNamed(std::string_view name) {
    for (std::size_t i = 0; i < kWatchReasons.size(); ++i)
        if (name == kWatchReasons[i]) return static_cast<WatchReason>(i);
    return WatchReason::Unknown;
}

const char* archiveReasonName(ArchiveReason reason) {
    return kArchiveReasons.at(static_cast<std::size_t>(reason));
}

ArchiveReason archiveReasonNamed(std::string_view name) {
    for (std::size_t i = 0; i < kArchiveReasons.size(); ++i)
        if (name == kArchiveReasons[i]) return static_cast<ArchiveReason>(i);
    return ArchiveReason::Saved;
}

}  // namespace vigil
