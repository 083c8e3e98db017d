#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "host/command/CommandLine.hpp"
#include "host/command/Commands.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {

struct CommandOutcome {
    ExitStatus status;
    std::string results;
    std::string errors;
};

/// `vigil …` of a user whose folder for settings is the test's.
class CommandBench : public testing::Test {
  protected:
    CommandBench() {
        if (const char* before = std::getenv("XDG_CONFIG_HOME")) m_before = before;
        setenv("XDG_CONFIG_HOME", m_folder.path().c_str(), 1);
        m_folder.makeFolder("vigil");
    }
    ~CommandBench() override {
        m_before ? setenv("XDG_CONFIG_HOME", m_before->c_str(), 1) : unsetenv("XDG_CONFIG_HOME");
    }

    static CommandOutcome run(const std::vector<std::string>& arguments) {
        std::FILE* results = std::tmpfile();
        std::FILE* errors = std::tmpfile();
        Output output(results, errors);
        const ExitStatus status = runCommandLine(arguments, allCommands(), output, VIGIL_BINARY_DIR "/bin");
        output.flush();
        return {status, takeText(results), takeText(errors)};
    }

    /// In the folder of the settings.
    std::string at(const std::string& name) const { return m_folder.path() + "/vigil/" + name; }
    std::string set(const std::string& text) const { return m_folder.write("vigil/vigil.toml", text); }
    /// A program in the shell's language, in the folder of the settings.
    std::string program(const std::string& name, const std::string& text) const {
        const std::string path = m_folder.write("vigil/" + name, "#!/bin/sh\n" + text);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    const TemporaryFolder m_folder;

  private:
    static std::string takeText(std::FILE* file) {
        std::string text;
        std::rewind(file);
        for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
            text += static_cast<char>(c);
        std::fclose(file);
        return text;
    }

    std::optional<std::string> m_before;
};

}  // namespace vigil
