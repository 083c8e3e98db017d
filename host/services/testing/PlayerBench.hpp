#pragma once

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include "host/services/Player.hpp"
#include "host/services/testing/ScriptBench.hpp"

// What tests of the player share: the real helper on a device that nobody hears, sounds and programs made
// here.

namespace vigil {

/// A WAV of one tone.
inline std::string toneWav(double seconds, int rate = 22050, double pitch = 440) {
    std::string samples;
    for (int i = 0; i < static_cast<int>(seconds * rate); ++i) {
        const auto value = static_cast<std::int16_t>(12000 * std::sin(2 * M_PI * pitch * i / rate));
        samples += static_cast<char>(value & 0xFF);
        samples += static_cast<char>(value >> 8 & 0xFF);
    }
    const auto number = [](std::size_t value, int size) {
        std::string bytes;
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> (8 * i) & 0xFF);
        return bytes;
    };
    const auto hertz = static_cast<std::size_t>(rate);
    return "RIFF" + number(36 + samples.size(), 4) + "WAVEfmt " + number(16, 4) + number(1, 2) +
           number(1, 2) + number(hertz, 4) + number(2 * hertz, 4) + number(2, 2) + number(16, 2) + "data" +
           number(samples.size(), 4) + samples;
}

/// A fresh folder; a driver that takes every sound in its own time and makes nothing of it.
class PlayerBench : public testing::Test {
  protected:
    using Steady = std::chrono::steady_clock;

    struct Heard {
        std::vector<PlayEnd> ends{};
        std::optional<Steady::time_point> began{};
        Steady::time_point ended{};
    };

    void SetUp() override {
        char pattern[] = "/tmp/vigil-test-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        m_folder = pattern;
        ::setenv("SDL_AUDIODRIVER", "dummy", 1);
    }
    void TearDown() override {
        m_player.reset();
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a player has not been waited for";
        std::filesystem::remove_all(m_folder);
        ::unsetenv("SDL_AUDIODRIVER");
    }

    std::string path(const std::string& name) const { return m_folder + "/" + name; }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
        return path(name);
    }
    std::string tone(const std::string& name, double seconds) const { return write(name, toneWav(seconds)); }
    /// A program that speaks; it stands in the shell's language.
    std::string program(const std::string& text) const {
        const std::string made = write("say", "#!/bin/sh\n" + text);
        std::filesystem::permissions(made, std::filesystem::perms::owner_all);
        return made;
    }
    /// One that gives a tone for whatever text.
    std::string toneProgram(double seconds) const {
        return program("cat > " + path("said") + "\ncat " + tone("voice.wav", seconds) + "\n");
    }

    Player::Options options() const { return {.helper = builtHelper()}; }
    Player& player(Player::Options given) {
        m_player = std::make_unique<Player>(std::move(given));
        return *m_player;
    }

    /// What a request is heard of stands in `m_heard` under the number that is returned.
    Player::Callbacks callbacks(std::size_t& number) {
        const std::lock_guard lock(m_mutex);
        number = m_heard.size();
        m_heard.emplace_back();
        return {.began = [this, number] { note([&](Heard& one) { one.began = Steady::now(); }, number); },
                .ended =
                    [this, number](const PlayEnd& end) {
                        note(
                            [&](Heard& one) {
                                one.ends.push_back(end);
                                one.ended = Steady::now();
                            },
                            number);
                    }};
    }
    std::size_t play(const std::string& file) {
        std::size_t number = 0;
        m_lastId = m_player->play(file, callbacks(number));
        return number;
    }
    std::size_t speak(const std::string& text, bool held = false) {
        std::size_t number = 0;
        m_lastId = m_player->speak(text, callbacks(number), held);
        return number;
    }
    std::size_t check(const std::string& file) {
        std::size_t number = 0;
        m_lastId = m_player->check(file, callbacks(number));
        return number;
    }
    bool begins(std::size_t number) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, kPatience, [&] { return m_heard[number].began.has_value(); });
    }
    /// Waits for the end of that number.
    PlayEnd end(std::size_t number) {
        std::unique_lock lock(m_mutex);
        const bool there = m_changed.wait_for(lock, kPatience, [&] { return !m_heard[number].ends.empty(); });
        EXPECT_TRUE(there) << "no end of request " << number;
        return there ? m_heard[number].ends.front() : PlayEnd{PlayOutcome::Failed, "no end"};
    }
    Heard heard(std::size_t number) {
        end(number);
        const std::lock_guard lock(m_mutex);
        return m_heard[number];
    }

    std::string m_folder;
    Player::Id m_lastId = 0;

  private:
    template <class Change>
    void note(Change change, std::size_t number) {
        const std::lock_guard lock(m_mutex);
        change(m_heard[number]);
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Heard> m_heard;

  protected:
    std::unique_ptr<Player> m_player;  // last, so that it ends before what its callbacks use
};

}  // namespace vigil
