#include "plugins/VigilPlugIn/VigilPlugIn/EmailAddress.hpp"

// The pattern as an automaton. Next to no choice is in it: what may follow depends on the part of the address
// and on the character before alone.

namespace vigil {
namespace {

enum class State {
    LocalBegin,  ///< an atom of the part before the "@" has to begin
    Local,       ///< inside an atom
    FirstBegin,  ///< the first label of the domain has to begin
    First,       ///< inside it, behind a letter or digit
    FirstDash,   ///< inside it, behind a dash, with which it cannot end
    LaterBegin,  ///< another label has to begin
    Later,       ///< inside it, behind a letter or digit: the address may end here
    LaterDash,
    No,
};

constexpr bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

constexpr bool isLocal(char c) {
    return isLetterOrDigit(c) ||
           (c != '\0' && std::string_view("!#$%&'*+/=?^_`{|}~-").find(c) != std::string_view::npos);
}

/// Inside a label; `dot` is where a full stop leads behind a letter or digit.
constexpr State label(char c, State alphanumeric, State dash, State dot) {
    if (isLetterOrDigit(c)) return alphanumeric;
    if (c == '-') return dash;
    return c == '.' ? dot : State::No;
}

constexpr State next(State state, char c) {
    switch (state) {
        case State::LocalBegin:
            return isLocal(c) ? State::Local : State::No;
        case State::Local:
            if (c == '@') return State::FirstBegin;
            if (c == '.') return State::LocalBegin;
            return isLocal(c) ? State::Local : State::No;
        case State::FirstBegin:
            return isLetterOrDigit(c) ? State::First : State::No;
        case State::First:
            return label(c, State::First, State::FirstDash, State::LaterBegin);
        case State::FirstDash:
            return label(c, State::First, State::FirstDash, State::No);
        case State::LaterBegin:
            return isLetterOrDigit(c) ? State::Later : State::No;
        case State::Later:
            return label(c, State::Later, State::LaterDash, State::LaterBegin);
        case State::LaterDash:
            return label(c, State::Later, State::LaterDash, State::No);
        case State::No:
            break;
    }
    return State::No;
}

}  // namespace

bool matchesEmailAddressPattern(std::string_view text) {
    State state = State::LocalBegin;
    for (const char c : text) {
        state = next(state, c);
        if (state == State::No) return false;
    }
    return state == State::Later;
}

}  // namespace vigil
