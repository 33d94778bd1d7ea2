#pragma once

namespace files::testing {

/// Which calls of the system fail in this process, as some file systems let them.
struct RefusedCalls {
  bool modes = false;    ///< setting a file's mode, as where a mount gives all files one
  bool looking = false;  ///< asking about an open file, as where a file on another machine has gone
};
RefusedCalls& Refused();

}  // namespace files::testing
