#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace vigil {

/// The program under load on a site, until it is killed. Throws std::runtime_error where it does not start.
class Load {
  public:
    explicit Load(const std::string& site);
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;
    ~Load();

    /// Kills it so many milliseconds behind its first word, and gives all lines that it wrote.
    std::vector<std::string> killAfter(int milliseconds);

  private:
    void end();

    pid_t m_process = -1;
    int m_output = -1;
};

}  // namespace vigil
