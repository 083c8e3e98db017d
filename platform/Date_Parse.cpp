#include <chrono>
#include <cmath>

#include "platform/Date.hpp"

namespace vigil {
namespace {

/// Reads digits from the front of a text.
class Digits {
  public:
    explicit Digits(std::string_view text) : m_rest(text) {}

    bool number(int most, int& out) {
        std::size_t length = 0;
        out = 0;
        while (length < m_rest.size() && length < static_cast<std::size_t>(most) && isDigit(m_rest[length]))
            out = out * 10 + (m_rest[length++] - '0');
        m_rest.remove_prefix(length);
        return length > 0;
    }

    bool fraction(double& out) {
        double place = 0.1;
        bool any = false;
        out = 0;
        for (; !m_rest.empty() && isDigit(m_rest.front()); m_rest.remove_prefix(1), place /= 10, any = true)
            out += place * (m_rest.front() - '0');
        return any;
    }

    bool mark(char c) {
        if (m_rest.empty() || m_rest.front() != c) return false;
        m_rest.remove_prefix(1);
        return true;
    }

    void blanks() {
        while (mark(' ')) {
        }
    }

    bool atEnd() const { return m_rest.empty(); }

  private:
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    std::string_view m_rest;
};

/// Minutes east of UTC from `Z`, `+01:00`, `+0100`, `+01` or nothing; false when it is none of these.
bool readOffset(Digits& in, int& minutes) {
    minutes = 0;
    in.blanks();
    if (in.atEnd()) return true;
    if (in.mark('Z') || in.mark('z')) return true;
    const bool west = in.mark('-');
    if (!west && !in.mark('+')) return false;
    int hour = 0;
    int minute = 0;
    if (!in.number(2, hour)) return false;
    const bool colon = in.mark(':');
    if (!in.number(2, minute) && colon) return false;
    if (hour > 23 || minute > 59) return false;
    minutes = (hour * 60 + minute) * (west ? -1 : 1);
    return true;
}

bool readTimeOfDay(Digits& in, double& seconds) {
    int hour = 0;
    int minute = 0;
    int second = 0;
    double fraction = 0;
    if (!in.number(2, hour) || !in.mark(':') || !in.number(2, minute)) return false;
    if (in.mark(':')) {
        if (!in.number(2, second)) return false;
        if ((in.mark('.') || in.mark(',')) && !in.fraction(fraction)) return false;
    }
    if (hour > 23 || minute > 59 || second > 60) return false;
    seconds = hour * 3600 + minute * 60 + second + fraction;
    return true;
}

Error refused(std::string_view text) {
    std::string shown(text.substr(0, 40));
    return {"\"" + shown + "\" is not a time; expected a form like 2026-11-21T10:34:18Z"};
}

}  // namespace

Result<Date> parseDate(std::string_view text) {
    Digits in(text);
    in.blanks();
    int year = 0;
    int month = 0;
    int day = 0;
    if (!in.number(4, year) || !in.mark('-') || !in.number(2, month) || !in.mark('-') || !in.number(2, day))
        return refused(text);
    const std::chrono::year_month_day date{std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) return refused(text);
    double seconds = 0;
    int offset = 0;
    bool separated = in.mark('T') || in.mark('t');
    if (!separated && in.mark(' ')) {
        in.blanks();
        separated = !in.atEnd();
    }
    if (separated && !readTimeOfDay(in, seconds)) return refused(text);
    if (!readOffset(in, offset)) return refused(text);
    in.blanks();
    if (!in.atEnd()) return refused(text);
    const auto days = std::chrono::sys_days(date).time_since_epoch().count();
    return Date::fromUnix(static_cast<double>(days) * 86400.0 + seconds - offset * 60.0);
}

}  // namespace vigil
