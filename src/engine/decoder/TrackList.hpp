#pragma once
#include <cstdint>

struct mpv_node;

namespace engine {

/// How high the moving picture among the decoder's tracks is, in lines; 0 without one. Covers and other
/// pictures that stand still are none. One whose height nobody knows before it is decoded counts as a line.
std::int32_t PictureHeightOf(const mpv_node& tracks);

}  // namespace engine
