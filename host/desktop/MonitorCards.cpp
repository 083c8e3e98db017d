#include "host/desktop/MonitorCards.hpp"

#include "host/desktop/Words.hpp"

namespace vigil {
namespace {

/// A station that brought nothing for so long is stale.
constexpr double kStaleSeconds = 120;
/// A fire is news for so long.
constexpr double kNewsSeconds = 5;

}  // namespace

Card cardOf(const MonitorStatus& status, Date now) {
    Card card{.id = status.id, .title = qt(status.title), .words = qt(status.words)};
    if (status.state == "failed") {
        card.mood = Mood::Bad;
    } else if (status.state == "cannot be judged") {
        card.mood = Mood::Warn;
    } else if (status.state == "not active") {
        card.words = say("not active");
    } else if (status.state == "waiting" && status.waitsUntil) {
        card.mood = Mood::Accent;
        const bool news = status.lastFire && now.secondsSince(*status.lastFire) < kNewsSeconds;
        card.words = news ? say("FIRED at %1").arg(momentText(*status.lastFire, now))
                          : say("waiting until %1").arg(momentText(*status.waitsUntil, now));
    } else {
        card.mood = Mood::Good;
        if (status.state == "watching" && status.words == "watching") {
            card.words = say("watching");
            if (status.lastFire)
                card.words = say("watching, fired at %1").arg(momentText(*status.lastFire, now));
        }
    }
    return card;
}

Card cardOf(const StationStatus& status, Date now) {
    Card card{.id = status.id, .title = qt(status.name)};
    const double age = status.lastData ? now.secondsSince(*status.lastData) : 0;
    if (status.feedState == "none") {
        card.words = say("no feed yet");
    } else if (status.feedState == "failed" || status.feedState == "retrying") {
        card.mood = Mood::Bad;
        card.words = status.feedState == "failed" ? say("failed: %1").arg(qt(status.feedWords))
                                                  : say("tries again: %1").arg(qt(status.feedWords));
    } else if (!status.lastData) {
        card.mood = Mood::Warn;
        card.words = say("never seen");
    } else if (age >= kStaleSeconds) {
        card.mood = Mood::Warn;
        card.words = say("stale since %1").arg(momentText(*status.lastData, now));
    } else if (status.feedState == "ended") {
        card.words = say("ended, data %1 old").arg(ageText(age));
    } else {
        card.mood = Mood::Good;
        card.words = age < 1 ? say("live") : say("live, data %1 old").arg(ageText(age));
    }
    return card;
}

}  // namespace vigil
