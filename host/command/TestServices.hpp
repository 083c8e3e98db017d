#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/command/ExitStatus.hpp"
#include "host/settings/Settings.hpp"

// What `vigil test` does: one real attempt, with the means and the settings that the service has. Each waits
// on the calling thread until it is known what happened.

namespace vigil {

/// What happened.
struct TestReport {
    /// Yes: it really did. No: it did not. BadInput: what was typed cannot be tried.
    ExitStatus status = ExitStatus::No;
    std::string says{};  ///< a sentence
    /// With what, and what came back: a name and a text each.
    std::vector<std::pair<std::string, std::string>> facts{};
    double seconds = 0;  ///< that the attempt took
};

/// An empty file means a sound of the monitor's own.
TestReport testSound(const Settings& settings, const std::string& programFolder, const std::string& file);
TestReport testSpeech(const Settings& settings, const std::string& programFolder, const std::string& text);
TestReport testMail(const Settings& settings, const std::string& programFolder, const std::string& address);
TestReport testSms(const Settings& settings, const std::string& programFolder, const std::string& number);

}  // namespace vigil
