#pragma once
#include <string>

#include "files/Descriptor.hpp"

namespace engine {

/// Whether a path, as it is written, leads to what the machine shows as files: devices, and the doors to this
/// process's own descriptors. Asks nothing of the disc.
bool IsOfTheMachine(const std::string& path);

/// Opens a file for the decoder. It waits for nobody and changes nothing on the way: only once it is known to
/// be a file, and where it lies behind all links, is it opened for reading, and then that very file.
/// Throws as `files::FailOn`, with the bare reason, where it can't be opened, and 5 for what is no file of
/// media: a folder, a pipe, a socket, a device, a file of the machine's own.
files::Descriptor OpenMedia(const std::string& path);

}  // namespace engine
