#include "engine/decoder/TrackList.hpp"

#include <mpv/client.h>

#include <algorithm>
#include <string_view>

namespace engine {
namespace {

const mpv_node* Field(const mpv_node& track, std::string_view name, mpv_format format) {
  if (track.format != MPV_FORMAT_NODE_MAP) return nullptr;
  const mpv_node_list& fields = *track.u.list;
  for (int i = 0; i < fields.num; ++i) {
    if (fields.keys[i] == name) return fields.values[i].format == format ? &fields.values[i] : nullptr;
  }
  return nullptr;
}

bool Flag(const mpv_node& track, std::string_view name) {
  const mpv_node* field = Field(track, name, MPV_FORMAT_FLAG);
  return field != nullptr && field->u.flag != 0;
}

}  // namespace

std::int32_t PictureHeightOf(const mpv_node& tracks) {
  if (tracks.format != MPV_FORMAT_NODE_ARRAY) return 0;
  for (int i = 0; i < tracks.u.list->num; ++i) {
    const mpv_node& track = tracks.u.list->values[i];
    const mpv_node* kind = Field(track, "type", MPV_FORMAT_STRING);
    if (kind == nullptr || std::string_view(kind->u.string) != "video") continue;
    if (Flag(track, "albumart") || Flag(track, "image")) continue;
    const mpv_node* height = Field(track, "demux-h", MPV_FORMAT_INT64);
    constexpr std::int64_t kHighest = INT32_MAX;
    return static_cast<std::int32_t>(
        height == nullptr ? 1 : std::clamp<std::int64_t>(height->u.int64, 1, kHighest));
  }
  return 0;
}

}  // namespace engine
