#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/command/ExitStatus.hpp"
#include "host/command/Output.hpp"
#include "host/settings/Settings.hpp"

// What this machine offers to Vigil. Looking changes nothing, waits for nothing and plays nothing. Main
// thread.

namespace vigil {

/// What a probe found.
struct Diagnosis {
    enum class State {
        Well,
        Finding,  ///< something is missing or set badly; `remedy` says what to do
        Unknown,  ///< it could not be looked at; `remedy` says what stood in the way
    };
    State state = State::Well;
    std::string says;    ///< one line
    std::string remedy;  ///< one line; empty when all is well

    static Diagnosis well(std::string says) { return {State::Well, std::move(says), {}}; }
    static Diagnosis finding(std::string says, std::string remedy) {
        return {State::Finding, std::move(says), std::move(remedy)};
    }
    static Diagnosis unknown(std::string says, std::string remedy) {
        return {State::Unknown, std::move(says), std::move(remedy)};
    }
};

/// Something to look at; one that throws has not been able to look.
struct Probe {
    std::string name;
    std::function<Diagnosis()> look;
};

/// Where the probes look. Tests give others.
struct DoctorSurroundings {
    /// A variable of the environment; one that is empty counts as absent.
    std::function<std::optional<std::string>(const char* name)> variable;
    std::string root;           ///< stands before every path of the system; empty for the machine itself
    std::string programFolder;  ///< see `CommandContext`
    std::string siteFolder;     ///< where sites are kept unless said otherwise
    std::string scriptsFolder;
    std::string settingsFile;
    std::string secretsFile;
    Settings settings{};   ///< as the file says; the defaults where something in it is wrong
    std::string siteFile;  ///< whose monitors' scripts are looked for; empty for none
};

/// This machine and this process.
DoctorSurroundings doctorSurroundings(const std::string& programFolder);

/// display, sound, speech, mail, sms, settings, secrets, site folder, scripts folder, time zone, module,
/// helper, shell, scripts
std::vector<Probe> doctorProbes(const DoctorSurroundings& surroundings);

/// Looks at everything, a line each. Yes when all is well, No when there are findings, Environment when
/// something could not be looked at.
ExitStatus examine(const std::vector<Probe>& probes, bool json, Output& output);

}  // namespace vigil
