#include <chrono>
#include <filesystem>
#include <future>
#include <optional>

#include <fmt/format.h>

#include "host/command/TestServices.hpp"
#include "host/setup/ServiceOptions.hpp"

// Sounds and speech.

namespace vigil {
namespace {

using Steady = std::chrono::steady_clock;

constexpr const char* kUsualText = "Vigil can be heard.";

std::string deviceOf(const Settings& settings) {
    return settings.sound.device.empty() ? "the default one" : settings.sound.device;
}

std::string sentenceOf(PlayOutcome outcome) {
    switch (outcome) {
        case PlayOutcome::Finished:
            return "It was played to its end. Whether it was heard is for you to say.";
        case PlayOutcome::Shortened:
            return "It was played, but its end was left out.";
        case PlayOutcome::NothingToSay:
            return "There is nothing to say.";
        case PlayOutcome::NotPlayable:
            return "The file cannot be played.";
        case PlayOutcome::NoDevice:
            return "It was not played: no device took it.";
        case PlayOutcome::NoProgram:
            return "It was not said: the program that speaks gave no speech.";
        case PlayOutcome::TimedOut:
            return "It was not played to its end in time.";
        case PlayOutcome::Cut:
        case PlayOutcome::Failed:
            break;
    }
    return "It was not played.";
}

struct Heard {
    PlayEnd end{};
    std::optional<double> begun{};  ///< seconds after it was asked for
    double seconds = 0;  ///< from its beginning, or where there was none from the asking, to its end
};

/// `ask` hands the callbacks to the player, which calls them in every case.
template <class Ask>
Heard heard(const Settings& settings, const std::string& programFolder, Ask ask) {
    std::promise<std::pair<PlayEnd, Steady::time_point>> ended;
    std::optional<Steady::time_point> began;  // written before `ended` is, by the player's thread
    // Gone before what its thread writes to.
    Player player(playerOptions(settings, programFolder));
    const auto asked = Steady::now();
    ask(player, Player::Callbacks{.began = [&] { began = Steady::now(); },
                                  .ended =
                                      [&](const PlayEnd& end) {
                                          ended.set_value({end, Steady::now()});
                                      }});
    const auto [end, when] = ended.get_future().get();
    const auto seconds = [](Steady::duration time) { return std::chrono::duration<double>(time).count(); };
    Heard result{.end = end, .seconds = seconds(when - began.value_or(asked))};
    if (began) result.begun = seconds(*began - asked);
    return result;
}

TestReport reportOf(const Heard& heard, std::vector<std::pair<std::string, std::string>> facts) {
    if (heard.begun) facts.emplace_back("began", fmt::format("after {:.1f} s", *heard.begun));
    if (!heard.end.detail.empty()) facts.emplace_back("answer", heard.end.detail);
    return {.status = heard.end.outcome == PlayOutcome::Finished ? ExitStatus::Yes : ExitStatus::No,
            .says = sentenceOf(heard.end.outcome),
            .facts = std::move(facts),
            .seconds = heard.seconds};
}

}  // namespace

TestReport testSound(const Settings& settings, const std::string& programFolder, const std::string& file) {
    const std::string own = programFolder + "/../lib/vigil/VigilPlugIn/Resources/chime.wav";
    std::error_code unknown;
    const std::string path = std::filesystem::absolute(file.empty() ? own : file, unknown).lexically_normal();
    if (!std::filesystem::exists(path, unknown))
        return {.status = ExitStatus::BadInput, .says = "there is no file " + path};
    const Heard sound = heard(settings, programFolder, [&](Player& player, Player::Callbacks callbacks) {
        player.play(path, std::move(callbacks));
    });
    return reportOf(sound, {{"file", path}, {"device", deviceOf(settings)}});
}

TestReport testSpeech(const Settings& settings, const std::string& programFolder, const std::string& text) {
    const std::string words = text.empty() ? kUsualText : text;
    const Heard speech = heard(settings, programFolder, [&](Player& player, Player::Callbacks callbacks) {
        player.speak(words, std::move(callbacks));
    });
    return reportOf(speech,
                    {{"text", words}, {"program", settings.speech.program}, {"device", deviceOf(settings)}});
}

}  // namespace vigil
