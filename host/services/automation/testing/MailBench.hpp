#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/services/SystemClock.hpp"
#include "host/services/automation/AutomationOptions.hpp"
#include "host/services/automation/testing/TestProcess.hpp"
#include "tests/support/TemporaryFolder.hpp"

// A real mail server of the test's own, and the options that lead to it.

namespace vigil {

inline std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class MailBench {
  public:
    /// Skips the test where the server's library is missing; on a build server ($CI) that is a failure.
    static bool isThere() {
        static const bool there = canRun({"/usr/bin/python3", "-c", "import aiosmtpd"});
        EXPECT_TRUE(there || !std::getenv("CI")) << "python3-aiosmtpd is missing";
        return there;
    }

    explicit MailBench(std::vector<std::string> more = {}) {
        std::vector<std::string> words = {"/usr/bin/python3", "-B",
                                          VIGIL_SOURCE_DIR "/host/services/automation/testing/smtp_server.py",
                                          folder()};
        words.insert(words.end(), more.begin(), more.end());
        m_server = std::make_unique<TestProcess>(std::move(words), folder() + "/server.log");
        EXPECT_TRUE(soon([&] { return std::filesystem::exists(folder() + "/port"); }))
            << bytesOf(folder() + "/server.log");
        m_port = std::atoi(bytesOf(folder() + "/port").c_str());
    }

    std::string folder() const { return m_folder.path(); }
    int port() const { return m_port; }
    void end() { m_server.reset(); }

    AutomationOptions options() const {
        AutomationOptions options;
        options.mail.method = MailOptions::Smtp;
        options.mail.host = "127.0.0.1";
        options.mail.port = m_port;
        options.mail.security = MailOptions::Plain;
        options.mail.from = "weather@example.org";
        options.helper = VIGIL_BINARY_DIR "/bin/vigil-helper";
        options.clock = systemNow;
        options.secret = [](const std::string& name) {
            return Result<std::optional<std::string>>(name == "mail" ? std::optional<std::string>("pass word")
                                                                     : std::nullopt);
        };
        return options;
    }

    /// The mail with that number, once it is there; empty where it does not come.
    std::string mail(int number) const {
        const std::string path = folder() + "/" + std::to_string(number) + ".eml";
        return soon([&] { return std::filesystem::exists(path); }) ? bytesOf(path) : "";
    }
    std::string envelope(int number) const {
        return bytesOf(folder() + "/" + std::to_string(number) + ".json");
    }
    std::size_t mails() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder()))
            if (entry.path().extension() == ".eml") ++count;
        return count;
    }
    /// Whether it has taken a mail that it will never answer.
    bool hangs() const { return std::filesystem::exists(folder() + "/hangs"); }
    /// How often it was asked to take a recipient.
    std::size_t asked() const {
        const std::string text = bytesOf(folder() + "/asked");
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

  private:
    TemporaryFolder m_folder;
    std::unique_ptr<TestProcess> m_server;
    int m_port = 0;
};

}  // namespace vigil
