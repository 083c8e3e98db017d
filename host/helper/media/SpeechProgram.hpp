#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

#include "host/services/PlayEnd.hpp"
#include "host/services/PlayerWire.hpp"
#include "host/services/UniqueFd.hpp"
#include "platform/Result.hpp"

struct pollfd;

namespace vigil {

inline constexpr std::size_t kSpeechBytes = 16
                                            << 20;  ///< of WAV, some six minutes; the program is then ended

/// The words by which the program is called.
std::vector<std::string> speechCommand(const PlayerSetup& setup);

/// A running program that turns a text on its standard input into a WAV on its standard output. Nothing here
/// waits. Ends with this object, whatever it started in its own session included.
class SpeechProgram {
  public:
    /// Starts it. An error in words.
    static Result<SpeechProgram, PlayEnd> start(const PlayerSetup& setup, std::string text);
    SpeechProgram(SpeechProgram&&) noexcept = default;
    SpeechProgram& operator=(SpeechProgram&&) noexcept = default;
    ~SpeechProgram();

    /// For poll: what it waits for, and until when.
    std::vector<pollfd> waitsFor() const;
    std::chrono::steady_clock::time_point deadline() const { return m_deadline; }
    /// Takes and gives what can be; true once it is over.
    bool serve();

    /// When it is over: a whole WAV, or why there is none.
    Result<std::string, PlayEnd> wav();
    /// Whether it had more to say than there is place for.
    bool isCut() const { return m_full; }

  private:
    struct Process {
        pid_t number = -1;
        Process() = default;
        explicit Process(pid_t given) : number(given) {}
        Process(Process&& other) noexcept;
        Process& operator=(Process&& other) noexcept;
        ~Process();
    };
    SpeechProgram() = default;
    void write();
    void read(UniqueFd& from, std::string& to, std::size_t most);

    Process m_process;
    UniqueFd m_ended;  // readable once the process has ended
    UniqueFd m_input, m_output, m_errors;
    std::string m_program;
    std::string m_text;
    std::size_t m_written = 0;
    std::string m_wav;
    std::string m_words;  // what it said on standard error
    std::chrono::steady_clock::time_point m_deadline{};
    int m_status = 0;
    bool m_full = false;
    bool m_late = false;
    bool m_over = false;
};

}  // namespace vigil
