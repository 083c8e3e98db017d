#pragma once

#include <string>
#include <string_view>

#include "platform/Result.hpp"

namespace vigil {

/// What the bytes of a sound file are, by how they begin.
enum class SoundForm { None, Wav, Mp3, Ogg, Flac };
SoundForm soundForm(std::string_view bytes);

/// The bytes of a sound file, whole. An error for what is no file, is larger than a sound may be
/// (`kSoundFileSize`), cannot be read or is of none of the forms. Never waits for a pipe or a device.
Result<std::string> readSoundFile(const std::string& path);

/// Puts the sizes in the head of a WAV right that was written to a pipe, where nobody knew them yet, and cuts
/// what is behind the last whole sample. An error when it is no WAV or holds no sample.
Result<std::string> completeWav(std::string bytes);

}  // namespace vigil
