#pragma once
#include <cstdint>
#include <string>

namespace engine::demo {

/// A square PNG picture: rings in two colours that follow from `seed`. Throws number 51 if it can't be made.
std::string CoverPng(std::uint32_t seed, int size = 300);

}  // namespace engine::demo
