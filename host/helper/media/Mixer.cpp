#include "host/helper/media/Mixer.hpp"

#include <atomic>
#include <cmath>
#include <utility>

#include <SDL.h>
#include <SDL_mixer.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "host/helper/media/SoundBytes.hpp"

namespace vigil {
namespace {

constexpr int kRate = 44100;
constexpr int kChannels = 2;
constexpr int kBuffer = 1024;  // samples; 23 ms
constexpr std::size_t kBytesASecond = std::size_t{kRate} * kChannels * 2;
constexpr int kNamedDevices = 8;  // that a sentence lists

// What the mixer's own thread tells: a bit a channel. The mixer is one a process, and so is this.
static_assert(kSoundsAtOnce <= 32);
std::atomic<std::uint32_t> g_finished{0};
int g_event = -1;

void channelFinished(int channel) {
    g_finished.fetch_or(std::uint32_t{1} << channel);
    const std::uint64_t one = 1;
    // fails only when it is set already
    [[maybe_unused]] const ssize_t written = ::write(g_event, &one, sizeof one);
}

Mix_MusicType typeOf(SoundForm form) {
    switch (form) {
        case SoundForm::Wav:
            return MUS_WAV;
        case SoundForm::Mp3:
            return MUS_MP3;
        case SoundForm::Ogg:
            return MUS_OGG;
        case SoundForm::Flac:
            return MUS_FLAC;
        case SoundForm::None:
            break;
    }
    return MUS_NONE;
}

SDL_RWops* reader(const std::string& bytes) {
    return SDL_RWFromConstMem(bytes.data(), static_cast<int>(bytes.size()));
}

/// Seconds, as the file itself says; less than 0 where it does not.
double saidLength(const std::string& bytes) {
    Mix_Music* music = Mix_LoadMUSType_RW(reader(bytes), typeOf(soundForm(bytes)), /*freesrc=*/1);
    const double seconds = music ? Mix_MusicDuration(music) : -1;
    if (music) Mix_FreeMusic(music);
    return seconds;
}

/// Why the library did not decode it.
PlayEnd whyNot() {
    const std::string text = SDL_GetError();
    // the library's words for it; at another time there may be some
    if (text == "Out of memory") return {PlayOutcome::Failed, "there is no memory for it now"};
    return {PlayOutcome::NotPlayable, text.empty() ? "it cannot be decoded" : text};
}

}  // namespace

Mixer::Mixer(std::string device) : m_device(std::move(device)) {
    g_event = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_APP_NAME, "Vigil");
}

Mixer::~Mixer() {
    close();
}

int Mixer::finishedEvent() const {
    return g_event;
}

/// With the driver, or with the one that the system prefers.
Result<Done> Mixer::openWith(const char* driver, const char* device) {
    close();
    if (driver)
        SDL_SetHintWithPriority(SDL_HINT_AUDIODRIVER, driver, SDL_HINT_OVERRIDE);
    else
        SDL_ResetHint(SDL_HINT_AUDIODRIVER);
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return Error{SDL_GetError()};
    Mix_Init(MIX_INIT_MP3 | MIX_INIT_OGG | MIX_INIT_FLAC);
    if (Mix_OpenAudioDevice(kRate, AUDIO_S16SYS, kChannels, kBuffer, device, 0) != 0) {
        Error failed{SDL_GetError()};
        if (device) failed.message += devicesText();
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        return failed;
    }
    Mix_AllocateChannels(kSoundsAtOnce);
    Mix_ChannelFinished(channelFinished);
    return Done{};
}

std::string Mixer::devicesText() const {
    std::string text;
    const int count = SDL_GetNumAudioDevices(/*iscapture=*/0);
    for (int i = 0; i < count && i < kNamedDevices; ++i)
        if (const char* name = SDL_GetAudioDeviceName(i, 0))
            text += (text.empty() ? "\"" : ", \"") + std::string(name) + "\"";
    return text.empty() ? "; there are none" : "; there are: " + text;
}

Result<Done> Mixer::openDevice() {
    if (m_state == State::Open) return Done{};
    auto opened = openWith(nullptr, m_device.empty() ? nullptr : m_device.c_str());
    if (opened) m_state = State::Open;
    return opened;
}

void Mixer::close() {
    if (m_state == State::Closed) return;
    Mix_CloseAudio();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    m_playing.clear();
    g_finished = 0;
    m_state = State::Closed;
}

Result<Mixer::Sound, PlayEnd> Mixer::decode(const std::string& bytes) {
    return decodeBytes(bytes, /*isSpeech=*/false);
}

Result<Mixer::Sound, PlayEnd> Mixer::decodeSpeech(const std::string& wav) {
    return decodeBytes(wav, /*isSpeech=*/true);
}

Result<Mixer::Sound, PlayEnd> Mixer::decodeBytes(const std::string& bytes, bool isSpeech) {
    if (m_state == State::Closed) {
        // The library decodes for a device that is open; this one is heard by nobody and always there.
        if (auto opened = openWith("dummy", nullptr); !opened)
            return PlayEnd{PlayOutcome::Failed, opened.error().message};
        m_state = State::Silent;
    }
    const PlayEnd tooLong{PlayOutcome::NotPlayable,
                          "it is longer than " + std::to_string(kSoundSeconds) + " seconds"};
    if (!isSpeech) {
        // before it takes the memory
        const double said = saidLength(bytes);
        if (said < 0) return whyNot();
        if (said > kSoundSeconds) return tooLong;
    }
    Mix_Chunk* chunk = Mix_LoadWAV_RW(reader(bytes), /*freesrc=*/1);
    if (!chunk) return whyNot();
    // what the conversion needed beside the sound is several times as large
    if (void* fitting = chunk->alen > 0 ? SDL_realloc(chunk->abuf, chunk->alen) : nullptr)
        chunk->abuf = static_cast<Uint8*>(fitting);
    Sound sound{{chunk, Mix_FreeChunk},
                static_cast<std::uint32_t>(std::uint64_t{chunk->alen} * 1000 / kBytesASecond),
                isSpeech};
    if (chunk->alen == 0) return PlayEnd{PlayOutcome::NotPlayable, "it holds no sound"};
    if (!isSpeech && sound.milliseconds > kSoundSeconds * 1000) return tooLong;
    return sound;
}

bool Mixer::hasRoomFor(const Sound& sound) const {
    std::uint64_t whole = sound.milliseconds;
    for (const auto& entry : m_playing)
        if (!entry.second.second.isSpeech) whole += entry.second.second.milliseconds;
    return sound.isSpeech || whole <= std::uint64_t{kSoundSecondsAtOnce} * 1000;
}

Result<Done, PlayEnd> Mixer::play(std::uint64_t id, Sound sound) {
    if (auto opened = openDevice(); !opened)
        return PlayEnd{PlayOutcome::NoDevice, "there is no sound device: " + opened.error().message};
    // One that this thread knows to be free: another one's end may not have been taken yet.
    int channel = 0;
    while (m_playing.contains(channel))
        ++channel;
    if (channel >= kSoundsAtOnce)
        return PlayEnd{PlayOutcome::Failed, std::to_string(kSoundsAtOnce) + " sounds are heard already"};
    if (!hasRoomFor(sound))
        return PlayEnd{PlayOutcome::Failed, "more than " + std::to_string(kSoundSecondsAtOnce) +
                                                " seconds of sound would be heard at once"};
    g_finished.fetch_and(~(std::uint32_t{1} << channel));
    if (Mix_PlayChannel(channel, sound.chunk.get(), /*loops=*/0) < 0)
        return PlayEnd{PlayOutcome::Failed, SDL_GetError()};
    m_playing[channel] = {id, std::move(sound)};
    return Done{};
}

void Mixer::stop(std::uint64_t id) {
    for (auto it = m_playing.begin(); it != m_playing.end(); ++it) {
        if (it->second.first != id) continue;
        Mix_HaltChannel(it->first);
        g_finished.fetch_and(~(std::uint32_t{1} << it->first));
        m_playing.erase(it);
        return;
    }
}

std::vector<std::uint64_t> Mixer::takeFinished() {
    std::uint64_t count = 0;
    // fails only when nobody has set it
    [[maybe_unused]] const ssize_t taken = ::read(g_event, &count, sizeof count);
    const std::uint32_t channels = g_finished.exchange(0);
    std::vector<std::uint64_t> finished;
    for (auto it = m_playing.begin(); it != m_playing.end();) {
        if ((channels >> it->first & 1) == 0) {
            ++it;
            continue;
        }
        finished.push_back(it->second.first);
        it = m_playing.erase(it);
    }
    return finished;
}

bool Mixer::takeLost(std::vector<std::uint64_t>& cut) {
    if (m_state != State::Open) return false;
    bool lost = false;
    SDL_Event event;
    while (SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_AUDIODEVICEADDED, SDL_AUDIODEVICEREMOVED) > 0)
        // number 0: one that was never open
        lost = lost ||
               (event.type == SDL_AUDIODEVICEREMOVED && !event.adevice.iscapture && event.adevice.which != 0);
    if (!lost) return false;
    for (const auto& [channel, playing] : m_playing)
        cut.push_back(playing.first);
    close();
    return true;
}

}  // namespace vigil
