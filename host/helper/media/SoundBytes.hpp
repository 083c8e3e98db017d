#pragma once

#include <string>
#include <string_view>

#include "host/services/PlayEnd.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What the bytes of a sound file are, by how they begin.
enum class SoundForm { None, Wav, Mp3, Ogg, Flac };
SoundForm soundForm(std::string_view bytes);

/// The bytes of a sound file, whole. `NotPlayable` for what is not there, is no file, is larger than a sound
/// may be (`kSoundFileSize`) or is of none of the forms; `Failed` where it cannot be read, which may pass.
/// Never waits for a pipe or a device.
Result<std::string, PlayEnd> readSoundFile(const std::string& path);

/// Puts the sizes in the head of a WAV right that was written to a pipe, where nobody knew them yet, and cuts
/// what is behind the last whole sample. An error when it is no WAV or holds no sample.
Result<std::string> completeWav(std::string bytes);

}  // namespace vigil
