#pragma once
#include <sys/stat.h>

#include <string>

#include "engine/common/Track.hpp"

namespace engine {

/// The stamp of a file that has been asked about already.
FileStamp StampFrom(const struct stat& info);

/// The file's stamp. Throws number 53 when there is no such file.
FileStamp StampOf(const std::string& path);

}  // namespace engine
