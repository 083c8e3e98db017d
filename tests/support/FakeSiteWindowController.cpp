#include "tests/support/FakeSiteWindowController.hpp"

#include <algorithm>

namespace vigil {

void FakeSiteWindowController::addPlugIn(std::shared_ptr<QRVPlugIn> plugIn, bool nameUniquely, bool select) {
    titlesAsked.push_back(plugIn->title());
    const auto taken = titles();
    const auto isTaken = [&](const std::string& title) {
        return std::find(taken.begin(), taken.end(), title) != taken.end();
    };
    std::string title = plugIn->title();
    for (int number = 2; nameUniquely && isTaken(title); ++number)
        title = plugIn->title() + " " + std::to_string(number);
    plugIn->setTitle(title);
    if (select) selected = plugIn;
    plugIns.push_back(std::move(plugIn));
}

std::vector<std::string> FakeSiteWindowController::titles() const {
    std::vector<std::string> found;
    for (const auto& plugIn : plugIns)
        found.push_back(plugIn->title());
    return found;
}

}  // namespace vigil
