#include "host/command/Output.hpp"

#include <unistd.h>

namespace vigil {
namespace {

bool goesToTerminal(std::FILE* stream) {
    const int descriptor = fileno(stream);
    return descriptor >= 0 && isatty(descriptor) == 1;
}

}  // namespace

void Output::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), m_results) != text.size()) m_failed = true;
}

void Output::error(std::string_view text) {
    errorText("vigil: " + std::string(text) + "\n");
}

void Output::errorText(std::string_view text) {
    flush();  // so that results and errors read in the order in which they came about
    // An error stream that cannot be written leaves nowhere to say so.
    if (std::fwrite(text.data(), 1, text.size(), m_errors) == text.size()) std::fflush(m_errors);
}

bool Output::flush() {
    if (std::fflush(m_results) != 0) m_failed = true;
    return !m_failed;
}

bool Output::isTerminal() const {
    return goesToTerminal(m_results);
}

bool Output::errorsGoToTerminal() const {
    return goesToTerminal(m_errors);
}

}  // namespace vigil
