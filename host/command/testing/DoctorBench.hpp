#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "host/command/Doctor_Probes.hpp"
#include "host/services/UniqueFd.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {

/// A machine that is a folder.
class DoctorBench : public testing::Test {
  protected:
    DoctorBench() {
        m_here.root = m_folder.path();
        m_here.variable = [this](const char* name) -> std::optional<std::string> {
            const auto found = m_variables.find(name);
            return found == m_variables.end() ? std::nullopt : std::optional(found->second);
        };
        m_here.siteFolder = "/data/vigil";
        m_here.scriptsFolder = "/settings/vigil/scripts";
        m_here.settingsFile = "/settings/vigil/vigil.toml";
        m_here.secretsFile = "/settings/vigil/secrets";
        m_variables["XDG_RUNTIME_DIR"] = "/run";
    }

    void folder(const std::string& path) { std::filesystem::create_directories(m_here.root + path); }

    void file(const std::string& path, std::filesystem::perms mode = std::filesystem::perms::owner_read) {
        folder(std::filesystem::path(path).parent_path().string());
        m_folder.write(path.substr(1), "x");
        std::filesystem::permissions(m_here.root + path, mode);
    }

    void program(const std::string& path) { file(path, std::filesystem::perms::owner_all); }

    void socketAt(const std::string& path) {
        folder(std::filesystem::path(path).parent_path().string());
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const std::string whole = m_here.root + path;
        ASSERT_LT(whole.size(), sizeof address.sun_path);
        whole.copy(address.sun_path, whole.size());
        const int made = socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_EQ(bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(listen(made, 8), 0);
        m_listening.emplace_back(made);
    }

    const TemporaryFolder m_folder;
    DoctorSurroundings m_here;
    std::map<std::string, std::string> m_variables;
    std::vector<UniqueFd> m_listening;
};

inline void expect(const Diagnosis& found, Diagnosis::State state, const std::string& part) {
    EXPECT_EQ(found.state, state) << found.says;
    EXPECT_THAT(found.says, testing::HasSubstr(part));
    EXPECT_EQ(found.remedy.empty(), state == Diagnosis::State::Well)
        << "a remedy for each finding, and for nothing else";
}

}  // namespace vigil
