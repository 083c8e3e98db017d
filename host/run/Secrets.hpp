#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Result.hpp"

namespace vigil {

/// Secrets by name, one "NAME = VALUE" a line, in a file that only its user may read: lines that begin with
/// "#" and empty ones are passed over. Read anew each time, so that a change needs no restart. Any thread.
class Secrets {
  public:
    /// "vigil/secrets" in the user's folder for settings.
    static std::string defaultFile();

    explicit Secrets(std::string file) : m_file(std::move(file)) {}

    /// Nothing when there is no such name. An error names the file and what to do: it is not there, it
    /// may not be read, others may read it, a line has no "=".
    Result<std::optional<std::string>> named(const std::string& name) const;

  private:
    const std::string m_file;
};

/// The user's secrets by name, for feeds: none where there is none, nor where it cannot be had, which `tell`
/// is then told. Any thread that `tell` may be called on.
std::function<std::optional<std::string>(const std::string&)> userSecrets(
    std::function<void(const std::string&)> tell);

}  // namespace vigil
