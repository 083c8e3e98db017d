#pragma once

#include <string>
#include <vector>

namespace vigil {

/// A monitor as the command line describes it, for which a keyed archive is written that the module then
/// decodes: the same way in which a saved monitor comes back.
struct MonitorDraft {
    std::string title = "Vigil";
    std::string condition;        ///< a text of the condition language, already checked
    double retriggerMinutes = 1;  ///< a whole number is archived as an integer
    bool onlyOnChange = false;
    std::vector<std::string> scripts;  ///< one "Run script" row each: file name and arguments
};

/// The archive text of an active monitor that has never fired. Its station is the reader's.
std::string archiveText(const MonitorDraft& draft);

}  // namespace vigil
