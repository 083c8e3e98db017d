#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/services/automation/testing/MailBench.hpp"

// A daemon for short messages with a phone that is a folder.

namespace vigil {

class GammuBench {
  public:
    static bool isThere() {
        static const bool there =
            canRun({"gammu-smsd", "--version"}) && canRun({"gammu-smsd-inject", "--version"});
        EXPECT_TRUE(there || !std::getenv("CI")) << "gammu-smsd is missing";
        return there;
    }

    GammuBench() {
        const std::string base = m_folder.path() + "/";
        for (const char* name : {"in", "out", "sent", "err", "sms/1", "sms/2", "sms/3", "sms/4", "sms/5"})
            std::filesystem::create_directories(base + name);
        m_folder.write("smsd.conf",
                       "[gammu]\nmodel=dummy\nconnection=none\ndevice=" + m_folder.path() +
                           "\n[smsd]\nservice=files\ninboxpath=" + base + "in/\noutboxpath=" + base +
                           "out/\nsentsmspath=" + base + "sent/\nerrorsmspath=" + base +
                           "err/\noutboxformat=detail\nloopsleep=1\ncommtimeout=1\nchecksecurity=0\n");
        m_daemon = std::make_unique<TestProcess>(std::vector<std::string>{"gammu-smsd", "-c", config()},
                                                 base + "daemon.log");
    }

    std::string config() const { return m_folder.path() + "/smsd.conf"; }

    /// What stands in the file of the one message to that number that was sent, without carriage returns; it
    /// goes. Empty where none comes. More than one is a failure.
    std::string sent(const std::string& number) const {
        std::vector<std::filesystem::path> found;
        soon([&] {
            found = messages("/sent", number);
            return !found.empty() && messages("/out", number).empty();
        });
        EXPECT_EQ(found.size(), 1u) << "to " << number;
        if (found.empty()) return "";
        std::string text = bytesOf(found[0]);
        for (const auto& path : found)
            std::filesystem::remove(path);
        std::erase(text, '\r');
        return text;
    }

  private:
    std::vector<std::filesystem::path> messages(const std::string& folder, const std::string& number) const {
        std::vector<std::filesystem::path> found;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.path() + folder))
            if (entry.path().filename().string().find("_" + number + "_") != std::string::npos)
                found.push_back(entry.path());
        return found;
    }

    TemporaryFolder m_folder;
    std::unique_ptr<TestProcess> m_daemon;
};

}  // namespace vigil
