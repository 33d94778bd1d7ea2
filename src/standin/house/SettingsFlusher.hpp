#pragma once
#include <memory>

#include "base/Loop.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// Brings changed settings into their files when nothing has changed for a while, and at the latest a minute
/// after the first change.
class SettingsFlusher {
 public:
  SettingsFlusher(base::Loop& loop, House& house);
  /// At the server's end.
  void flushNow();

 private:
  void look();
  House& house_;
  std::size_t seen_ = 0;
  int looks_ = 0;
  bool complained_ = false;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace standin
