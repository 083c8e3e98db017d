#pragma once

#include <string>
#include <vector>

namespace vigil {

/// What a module keeps of one rule of the contract.
struct ConformanceFinding {
    enum class Outcome { Kept, Broken, NotApplicable };
    std::string subject;  ///< a class of the module, or the bundle
    std::string rule;     ///< one sentence
    Outcome outcome = Outcome::Kept;
    std::string reason;  ///< of what is not kept
};

/// Loads a module and puts each of its classes through a plug-in's life: made, started, fed with ordinary and
/// odd readings, stopped, archived and read back, unloaded, let go. Nothing that it asks for is really run.
/// Loading runs the module's code, so only modules that one trusts belong here. Main thread.
std::vector<ConformanceFinding> checkModule(const std::string& bundleFolder);

}  // namespace vigil
