#include "host/helper/media/SpeechProgram.hpp"

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/helper/media/SoundBytes.hpp"

// What becomes of it once it runs; SpeechProgram_Start.cpp starts it.

namespace vigil {
namespace {

constexpr std::size_t kKeptWords = 4 << 10;

/// The last line that is not empty, for people.
std::string lastLine(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text.substr(text.rfind('\n') + 1);
}

}  // namespace

SpeechProgram::Process::Process(Process&& other) noexcept : number(std::exchange(other.number, -1)) {}

SpeechProgram::Process& SpeechProgram::Process::operator=(Process&& other) noexcept {
    std::swap(number, other.number);
    return *this;
}

SpeechProgram::Process::~Process() {
    if (number <= 0) return;
    ::kill(-number, SIGKILL);
    while (::waitpid(number, nullptr, 0) < 0 && errno == EINTR) {
    }
}

SpeechProgram::~SpeechProgram() = default;

std::vector<pollfd> SpeechProgram::waitsFor() const {
    return {{m_input.get(), POLLOUT, 0},
            {m_output.get(), POLLIN, 0},
            {m_errors.get(), POLLIN, 0},
            {m_ended.get(), POLLIN, 0}};
}

void SpeechProgram::write() {
    while (m_input && m_written < m_text.size()) {
        const ssize_t count = ::write(m_input.get(), m_text.data() + m_written, m_text.size() - m_written);
        if (count > 0)
            m_written += static_cast<std::size_t>(count);
        else if (errno == EAGAIN)
            return;
        else if (errno != EINTR)
            break;  // it does not listen; what it says is what counts
    }
    m_input.reset();
}

void SpeechProgram::read(UniqueFd& from, std::string& to, std::size_t most) {
    char bytes[64 << 10];
    while (from && to.size() <= most) {
        const ssize_t count = ::read(from.get(), bytes, sizeof bytes);
        if (count > 0)
            to.append(bytes, static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            from.reset();
        else if (errno == EAGAIN)
            return;
    }
}

bool SpeechProgram::serve() {
    write();
    read(m_output, m_wav, kSpeechBytes);
    read(m_errors, m_words, kKeptWords);
    if (m_words.size() > kKeptWords) m_words.erase(0, m_words.size() - kKeptWords / 2);
    m_full = m_wav.size() > kSpeechBytes;
    m_late = std::chrono::steady_clock::now() >= m_deadline;
    siginfo_t info{};
    // looks without taking it away: its number stays its own until its group has been ended
    const bool ended =
        ::waitid(P_PID, static_cast<id_t>(m_process.number), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
        info.si_pid == m_process.number;
    m_over = ended || m_full || m_late;
    if (!m_over) return false;
    if (ended) read(m_output, m_wav, kSpeechBytes);  // what came between the two looks
    if (ended) m_late = false;
    m_status = info.si_code == CLD_EXITED ? info.si_status : -1;
    m_process = Process();
    return true;
}

Result<std::string, PlayEnd> SpeechProgram::wav() {
    if (m_late) return PlayEnd{PlayOutcome::TimedOut, m_program + " did not end in time"};
    if (auto whole = completeWav(std::move(m_wav))) return std::move(whole).value();
    const std::string words = lastLine(m_words);
    return PlayEnd{PlayOutcome::NoProgram,
                   m_program + " gave no sound" +
                       (m_status > 0 ? " and ended with exit status " + std::to_string(m_status) : "") +
                       (words.empty() ? "" : ": " + words)};
}

}  // namespace vigil
