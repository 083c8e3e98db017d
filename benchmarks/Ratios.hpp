#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vigil::bench {

/// The time in nanoseconds of each benchmark's fastest repetition, by name. On a shared machine whatever else
/// runs only adds, so the fastest one says most.
class Fastest {
  public:
    void add(std::string name, double nanoseconds) { m_entries.push_back({std::move(name), nanoseconds}); }
    /// 0 when no benchmark of that name ran.
    double of(const std::string& name) const;

  private:
    struct Entry {
        std::string name;
        double nanoseconds;
    };
    std::vector<Entry> m_entries;
};

/// Runs the registered benchmarks, several repetitions each in mixed order unless the arguments say
/// otherwise, and then lets `table` print what follows from it. A second thread is alive
/// throughout, as in any host: with one thread alone the standard library leaves out its atomic operations.
int runWithRatios(int argc, char** argv, const std::function<void(const Fastest&)>& table);

}  // namespace vigil::bench
