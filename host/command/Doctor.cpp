#include "host/command/Doctor.hpp"

#include <algorithm>
#include <cstdlib>
#include <exception>

#include "host/command/Doctor_Probes.hpp"
#include "host/command/JsonText.hpp"
#include "host/command/SettingsChoice.hpp"
#include "host/run/Secrets.hpp"

namespace vigil {
namespace {

const char* stateName(Diagnosis::State state) {
    switch (state) {
        case Diagnosis::State::Well:
            return "ok";
        case Diagnosis::State::Finding:
            return "finding";
        case Diagnosis::State::Unknown:
            return "unknown";
    }
    return "";
}

Diagnosis lookAt(const Probe& probe) {
    try {
        return probe.look();
    } catch (const std::exception& failure) {
        return Diagnosis::unknown(failure.what(), "try again, and report this if it stays");
    }
}

void appendMember(std::string& to, const char* name, const std::string& text) {
    ((to += to.back() == '{' ? "\"" : ",\"") += name) += "\":";
    appendJsonText(to, text);
}

std::string jsonLine(const Probe& probe, const Diagnosis& found) {
    std::string line = "{";
    appendMember(line, "probe", probe.name);
    appendMember(line, "state", stateName(found.state));
    appendMember(line, "says", found.says);
    if (!found.remedy.empty()) appendMember(line, "remedy", found.remedy);
    return line + "}\n";
}

}  // namespace

ExitStatus examine(const std::vector<Probe>& probes, bool json, Output& output) {
    std::size_t widest = 0;
    for (const Probe& probe : probes)
        widest = std::max(widest, probe.name.size());
    auto status = ExitStatus::Yes;
    for (const Probe& probe : probes) {
        const Diagnosis found = lookAt(probe);
        if (found.state == Diagnosis::State::Unknown) status = ExitStatus::Environment;
        if (found.state == Diagnosis::State::Finding && status == ExitStatus::Yes) status = ExitStatus::No;
        if (json)
            output.write(jsonLine(probe, found));
        else
            output.print("{:<{}}  {:<7}  {}{}{}\n", probe.name, widest, stateName(found.state), found.says,
                         found.remedy.empty() ? "" : ": ", found.remedy);
        output.flush();
    }
    return status;
}

DoctorSurroundings doctorSurroundings(const std::string& programFolder) {
    DoctorSurroundings here;
    here.variable = [](const char* name) -> std::optional<std::string> {
        const char* text = std::getenv(name);
        return text && *text ? std::optional<std::string>(text) : std::nullopt;
    };
    here.programFolder = programFolder;
    here.settingsFile = defaultSettingsFile();
    here.secretsFile = Secrets::defaultFile();
    // Wrong ones are told by their own probe.
    here.settings = settingsOrDefaults();
    const Settings whole = effective(here.settings);
    here.scriptsFolder = whole.run.scripts;
    here.siteFile = whole.site.file;
    const auto data = here.variable("XDG_DATA_HOME");
    const auto home = here.variable("HOME");
    // The rule for these folders: a path that is not absolute counts as none.
    if (const std::string& file = here.settings.site.file; !file.empty())
        here.siteFolder = file.substr(0, file.rfind('/'));
    else if (data && data->starts_with('/'))
        here.siteFolder = *data + "/vigil";
    else if (home)
        here.siteFolder = *home + "/.local/share/vigil";
    return here;
}

std::vector<Probe> doctorProbes(const DoctorSurroundings& surroundings) {
    return {
        {"display", [=] { return displayProbe(surroundings); }},
        {"sound", [=] { return soundProbe(surroundings); }},
        {"speech", [=] { return speechProbe(surroundings); }},
        {"mail", [=] { return mailProbe(surroundings); }},
        {"sms", [=] { return smsProbe(surroundings); }},
        {"settings", [=] { return settingsProbe(surroundings); }},
        {"secrets", [=] { return secretsProbe(surroundings); }},
        {"site folder", [=] { return siteFolderProbe(surroundings); }},
        {"scripts folder", [=] { return scriptsFolderProbe(surroundings); }},
        {"time zone", [=] { return timeZoneProbe(surroundings); }},
        {"module", [=] { return moduleProbe(surroundings); }},
        {"helper", [=] { return helperProbe(surroundings); }},
        {"shell", [=] { return shellProbe(surroundings); }},
        {"scripts", [=] { return scriptRowsProbe(surroundings); }},
    };
}

}  // namespace vigil
