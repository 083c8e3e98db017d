#pragma once

#include <string>

#include "host/command/Output.hpp"
#include "host/site/SiteProgress.hpp"

namespace vigil {

/// How far something long has come, in one line of the error stream that is written over and goes at the end.
/// One thread.
class Progress {
  public:
    /// Shows nothing where the errors do not go to a terminal.
    explicit Progress(Output& output) : Progress(output, output.errorsGoToTerminal()) {}
    Progress(Output& output, bool shown) : m_output(output), m_shown(shown) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { end(); }

    /// This object must outlive it.
    SiteProgress teller();
    /// Takes the line away.
    void end();

  private:
    void show(const char* what, std::size_t done, std::size_t all);

    Output& m_output;
    const bool m_shown;
    std::string m_line;
};

}  // namespace vigil
