#include "host/helper/media/SoundBytes.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/services/PlayerWire.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {
namespace {

constexpr std::size_t kRiffHead = 12;  // "RIFF", its size, "WAVE"
constexpr std::size_t kChunkHead = 8;  // a name and a size

std::size_t littleEndian(std::string_view bytes, std::size_t at, std::size_t size) {
    std::size_t value = 0;
    for (std::size_t i = size; i > 0; --i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
    return value;
}

void putSize(std::string& bytes, std::size_t at, std::size_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

bool isWav(std::string_view bytes) {
    return bytes.size() >= kRiffHead && bytes.substr(0, 4) == "RIFF" && bytes.substr(8, 4) == "WAVE";
}

PlayEnd refusal(std::string why) {
    return {PlayOutcome::NotPlayable, std::move(why)};
}

PlayEnd systemError(int reason) {
    const bool isNotThere = reason == ENOENT || reason == ENOTDIR;
    return {isNotThere ? PlayOutcome::NotPlayable : PlayOutcome::Failed, std::strerror(reason)};
}

}  // namespace

SoundForm soundForm(std::string_view bytes) {
    if (isWav(bytes)) return SoundForm::Wav;
    if (bytes.starts_with("OggS")) return SoundForm::Ogg;
    if (bytes.starts_with("fLaC")) return SoundForm::Flac;
    if (bytes.starts_with("ID3")) return SoundForm::Mp3;
    // eleven set bits begin a frame; a layer and a rate of all ones or none are no frame's
    if (bytes.size() < 4 || static_cast<unsigned char>(bytes[0]) != 0xFF) return SoundForm::None;
    const auto second = static_cast<unsigned char>(bytes[1]);
    const auto third = static_cast<unsigned char>(bytes[2]);
    const bool isFrame = (second & 0xE0) == 0xE0 && (second & 0x06) != 0 && (third & 0xF0) != 0xF0;
    return isFrame ? SoundForm::Mp3 : SoundForm::None;
}

Result<std::string, PlayEnd> readSoundFile(const std::string& path) {
    const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!file || ::fstat(file.get(), &info) != 0) return systemError(errno);
    if (!S_ISREG(info.st_mode)) return refusal("it is no file");
    std::string bytes;
    char piece[64 << 10];
    while (true) {
        const ssize_t count = ::read(file.get(), piece, sizeof piece);
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return systemError(errno);
        bytes.append(piece, static_cast<std::size_t>(count));
        if (bytes.size() > kSoundFileSize)
            return refusal("it is larger than " + std::to_string(kSoundFileSize >> 20) + " MiB");
    }
    if (soundForm(bytes) == SoundForm::None) return refusal("it is no wav, mp3, ogg or flac");
    return bytes;
}

Result<std::string> completeWav(std::string bytes) {
    if (!isWav(bytes)) return Error{"it is no WAV"};
    std::size_t frame = 0;
    for (std::size_t at = kRiffHead; at + kChunkHead <= bytes.size();) {
        const std::string_view name = std::string_view(bytes).substr(at, 4);
        const std::size_t size = littleEndian(bytes, at + 4, 4);
        const std::size_t left = bytes.size() - at - kChunkHead;
        if (name == "fmt " && size >= 16 && left >= 16) frame = littleEndian(bytes, at + kChunkHead + 12, 2);
        if (name == "data") {
            if (frame == 0) return Error{"its samples have no form"};
            const std::size_t samples = std::min(size, left) / frame * frame;
            if (samples == 0) return Error{"it holds no sound"};
            bytes.resize(at + kChunkHead + samples);
            if (samples % 2 != 0) bytes += '\0';
            putSize(bytes, at + 4, samples);
            putSize(bytes, 4, bytes.size() - kChunkHead);
            return bytes;
        }
        if (size > left) break;
        at += kChunkHead + size + size % 2;
    }
    return Error{"it holds no sound"};
}

}  // namespace vigil
