#pragma once
#include <string>
#include <vector>

namespace engine::demo {

/// Mono samples from -1 to 1.
struct Sound {
  int rate = 44100;
  std::vector<float> samples;
};

enum class FileFormat { kWav, kFlac, kOgg };

/// A steady tone.
Sound Tone(double hertz, double seconds, int rate = 44100);
/// Silence of that length.
Sound Silence(double seconds, int rate = 44100);
/// Writes the sound to a file. Throws number 57 when it can't be written.
void WriteSound(const std::string& path, const Sound& sound, FileFormat format);
/// Reads a sound file's first channel. Throws number 57 when it can't be read.
Sound ReadSound(const std::string& path);

}  // namespace engine::demo
