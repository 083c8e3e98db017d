#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

namespace vigil {
namespace {

/// Stands for an absent list: whatever an action asks of it is nothing.
const DisplayValueList kNoDisplayValues(2);

}  // namespace

void QRVVigilPlugIn::performActions() {
    // Lists and lengths are read anew for every row: an action that waits lets the editor replace them
    // meanwhile.
    for (std::size_t row = 0;; ++row) {
        const auto paths = ruleEditorStoredCriteria();
        if (!paths || row >= paths->size()) return;
        const auto values = ruleEditorStoredDisplayValues();
        const std::shared_ptr<Criterion> head = paths->at(row).at(0);
        const DisplayValueList shown = values ? values->at(row) : kNoDisplayValues;
        if (head) head->performActionWithDisplayValues(shown);
    }
}

}  // namespace vigil
