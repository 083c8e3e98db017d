#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Result.hpp"

namespace vigil {

/// The text of a script as a file that nobody else can read, in a folder of its own. Removes the folder and
/// all in it when it dies.
class ScriptFile {
  public:
    /// In the first of `folders` that can be made and takes the text; each is made anew and must not stand
    /// already. Fails with the reason of the last.
    static Result<ScriptFile> write(const std::vector<std::string>& folders, std::string_view source);

    ScriptFile(ScriptFile&& other) noexcept;
    ScriptFile& operator=(ScriptFile&&) = delete;
    ~ScriptFile();

    std::string path() const { return m_folder + "/script"; }

  private:
    explicit ScriptFile(std::string folder) : m_folder(std::move(folder)) {}
    std::string m_folder;  // empty: moved from
};

/// The first line of a script as Linux reads it: `#!`, blanks, the program up to the next blank, then at most
/// one argument, the blanks within included. Nothing when there is no such line or it names no program.
struct ScriptInterpreter {
    std::string program;
    std::optional<std::string> argument;
    friend bool operator==(const ScriptInterpreter&, const ScriptInterpreter&) = default;
};
std::optional<ScriptInterpreter> scriptInterpreter(std::string_view source);

}  // namespace vigil
