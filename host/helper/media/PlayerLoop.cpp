#include "host/helper/media/PlayerLoop.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/socket.h>

#include "host/helper/HostSocket.hpp"
#include "host/helper/media/SoundBytes.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;

/// A device that was lost is noticed so late.
constexpr milliseconds kDeviceLook{100};
/// What has been mixed is heard a little later: so long after an end the device is left to itself.
constexpr milliseconds kTail{150};
/// So long must the program that speaks say nothing before a file is decoded meanwhile.
constexpr milliseconds kSpeechFirst{50};

}  // namespace

PlayerLoop::PlayerLoop(PlayerSetup setup, int socket, WireBuffer buffer)
    : m_setup(std::move(setup)), m_socket(socket), m_buffer(std::move(buffer)), m_mixer(m_setup.device) {}

void PlayerLoop::run() {
    while (takeAll()) {
        const bool isIdle = !wait();
        if (!receive()) break;
        serveSpeech();
        serveMixer();
        if (isIdle) decodeNext();
    }
    m_speech.reset();  // what its program has started would outlive this process
    std::this_thread::sleep_until(m_lastEnd + kTail);
}

/// Takes the commands that have come; false when the host is gone or talks nonsense.
bool PlayerLoop::takeAll() {
    while (const auto message = m_buffer.next()) {
        const auto decoded = decodePlayerMessage(*message);
        if (!decoded) return false;
        take(*decoded);
    }
    return !m_hostGone && !m_buffer.broken();
}

/// Waits for something to do; false where there is nothing but files to decode.
bool PlayerLoop::wait() {
    std::vector<pollfd> fds{{m_socket, POLLIN, 0}, {m_mixer.finishedEvent(), POLLIN, 0}};
    milliseconds::rep limit = m_mixer.isPlaying() ? kDeviceLook.count() : -1;
    if (!m_files.empty()) limit = m_speech ? kSpeechFirst.count() : 0;
    if (m_speech) {
        const auto more = m_speech->program.waitsFor();
        fds.insert(fds.end(), more.begin(), more.end());
        const auto left =
            std::chrono::ceil<milliseconds>(m_speech->program.deadline() - std::chrono::steady_clock::now());
        const auto rest = std::max<milliseconds::rep>(left.count(), 0);
        limit = limit < 0 ? rest : std::min(limit, rest);
    }
    return ::poll(fds.data(), fds.size(), static_cast<int>(limit)) > 0;
}

/// Takes what has come; false when the host is gone.
bool PlayerLoop::receive() {
    char bytes[64 << 10];
    while (true) {
        const ssize_t count = ::recv(m_socket, bytes, sizeof bytes, MSG_DONTWAIT);
        if (count > 0)
            m_buffer.append({bytes, static_cast<std::size_t>(count)});
        else if (count < 0 && errno == EINTR)
            continue;
        else
            return count < 0 && errno == EAGAIN;
    }
}

void PlayerLoop::take(const PlayerMessage& message) {
    switch (message.kind) {
        case PlayerMessage::Check:
        case PlayerMessage::Play:
            m_files.push_back(message);
            return;
        case PlayerMessage::Speak:
            return speak(message);
        case PlayerMessage::Stop:
            return stop(message.id);
        case PlayerMessage::Ping:
            return send(PlayerMessage::Pong, 0, message.number, {});
        default:
            m_hostGone = true;  // it says what only a player says
    }
}

void PlayerLoop::decodeNext() {
    if (m_files.empty()) return;
    const PlayerMessage message = std::move(m_files.front());
    m_files.pop_front();
    if (message.kind == PlayerMessage::Check)
        check(message);
    else
        play(message);
}

void PlayerLoop::check(const PlayerMessage& message) {
    PlayEnd verdict;
    if (const auto bytes = readSoundFile(message.text); !bytes)
        verdict = bytes.error();
    else if (const auto sound = m_mixer.decode(bytes.value()); !sound)
        verdict = sound.error();
    send(PlayerMessage::Verdict, message.id, static_cast<std::uint32_t>(verdict.outcome),
         std::move(verdict.detail));
}

void PlayerLoop::play(const PlayerMessage& message) {
    const auto bytes = readSoundFile(message.text);
    if (!bytes) return end(message.id, bytes.error().outcome, bytes.error().detail);
    auto sound = m_mixer.decode(bytes.value());
    if (!sound) return end(message.id, sound.error().outcome, sound.error().detail);
    begin(message.id, std::move(sound).value());
}

void PlayerLoop::speak(const PlayerMessage& message) {
    if (m_speech) return end(message.id, PlayOutcome::Failed, "another speech is being made");
    if (message.text.empty()) return end(message.id, PlayOutcome::NothingToSay, "there is nothing to say");
    auto program = SpeechProgram::start(m_setup, message.text);
    if (!program) return end(message.id, program.error().outcome, program.error().detail);
    m_speech.emplace(Speech{message.id, std::move(program).value()});
}

void PlayerLoop::stop(std::uint64_t id) {
    std::erase_if(m_files, [id](const PlayerMessage& file) { return file.id == id; });
    if (m_speech && m_speech->id == id) m_speech.reset();
    m_mixer.stop(id);
}

void PlayerLoop::serveSpeech() {
    if (!m_speech || !m_speech->program.serve()) return;
    Speech speech = std::move(*m_speech);
    m_speech.reset();
    const auto wav = speech.program.wav();
    if (!wav) return end(speech.id, wav.error().outcome, wav.error().detail);
    auto sound = m_mixer.decodeSpeech(wav.value());
    if (!sound)
        return end(speech.id, PlayOutcome::NoProgram,
                   m_setup.program + " gave what cannot be decoded: " + sound.error().detail);
    if (speech.program.isCut()) m_tooLong = speech.id;
    begin(speech.id, std::move(sound).value());
}

void PlayerLoop::begin(std::uint64_t id, Mixer::Sound sound) {
    const std::uint32_t length = sound.milliseconds;
    if (const auto begun = m_mixer.play(id, std::move(sound)); !begun)
        return end(id, begun.error().outcome, begun.error().detail);
    send(PlayerMessage::Began, id, length, {});
}

void PlayerLoop::serveMixer() {
    for (const std::uint64_t id : m_mixer.takeFinished()) {
        if (m_tooLong == id)
            end(id, PlayOutcome::Shortened, "it was too long, and its end was left out");
        else
            end(id, PlayOutcome::Finished, {});
        m_lastEnd = std::chrono::steady_clock::now();
    }
    std::vector<std::uint64_t> cut;
    if (!m_mixer.takeLost(cut)) return;
    for (const std::uint64_t id : cut)
        end(id, PlayOutcome::NoDevice, "the sound device was lost");
}

void PlayerLoop::send(PlayerMessage::Kind kind, std::uint64_t id, std::uint32_t number, std::string text) {
    if (!sendAll(m_socket, encodePlayerMessage({kind, id, number, std::move(text)}))) m_hostGone = true;
}

void PlayerLoop::end(std::uint64_t id, PlayOutcome outcome, std::string detail) {
    send(PlayerMessage::Ended, id, static_cast<std::uint32_t>(outcome), std::move(detail));
}

}  // namespace vigil
