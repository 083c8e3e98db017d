#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host_contract/QRVPlugIn.hpp"

namespace vigil {

/// A site's window that keeps what is added to it. Where a unique title is asked for, a second "Vigil"
/// becomes "Vigil 2". Main thread.
class FakeSiteWindowController : public SiteWindowController {
  public:
    void addPlugIn(std::shared_ptr<QRVPlugIn> plugIn, bool nameUniquely, bool select) override;

    std::vector<std::shared_ptr<QRVPlugIn>> plugIns;
    std::shared_ptr<QRVPlugIn> selected;
    /// The titles that the plug-ins bore when they came.
    std::vector<std::string> titlesAsked;

    std::vector<std::string> titles() const;
};

}  // namespace vigil
