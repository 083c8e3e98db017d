#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Result.hpp"

namespace vigil {

/// Where a running site answers other programs of its user: a socket beside its file, mode 600. A question is
/// one word and a line's end ("status", "reload"), the answer is one text, then the connection ends.
class SiteSocket {
  public:
    /// Gives the answer to a question; called on the socket's thread, one at a time. May wait a while.
    using Answer = std::function<std::string(const std::string& question)>;

    /// "home.vigilsite-socket" for "home.vigilsite".
    static std::string pathOf(const std::string& siteFile);

    /// Takes the place of a socket that a process left behind; the caller holds the site's lock. An error
    /// where there is no place for it.
    static Result<std::unique_ptr<SiteSocket>> open(const std::string& siteFile, Answer answer);
    SiteSocket(const SiteSocket&) = delete;
    SiteSocket& operator=(const SiteSocket&) = delete;
    /// Ends within a tenth of a second, but for an answer under way, and removes the socket.
    ~SiteSocket();

    /// Asks the process that runs the site. Nothing listens there: an error. Waits `seconds` at most.
    static Result<std::string> ask(const std::string& siteFile, const std::string& question,
                                   double seconds = 5);

  private:
    struct State;
    explicit SiteSocket(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

}  // namespace vigil
