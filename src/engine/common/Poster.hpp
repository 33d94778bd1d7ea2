#pragma once
#include <functional>
#include <memory>
#include <utility>

#include "base/Loop.hpp"

namespace engine {

/// Posts work that is dropped if its owner has gone by the time the loop comes to it. The owner is destroyed
/// on the loop's thread, after every other thread that posts.
class Poster {
 public:
  explicit Poster(base::Loop& loop) : loop_(loop), alive_(std::make_shared<char>()) {}

  void operator()(std::function<void()> work) const {
    loop_.post([alive = std::weak_ptr<char>(alive_), work = std::move(work)] {
      if (!alive.expired()) work();
    });
  }

 private:
  base::Loop& loop_;
  std::shared_ptr<char> alive_;
};

}  // namespace engine
