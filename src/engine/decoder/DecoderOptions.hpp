#pragma once
#include "engine/common/Config.hpp"
#include "engine/decoder/MpvHandle.hpp"

namespace engine {

/// What holds for every decoder: it takes nothing from elsewhere, opens what it is given and nothing beside,
/// and its pictures are drawn by us.
MpvOptions DecoderOptions();

/// What holds instead while a station plays, and for that alone: a list of addresses may be all that it
/// sends.
MpvOptions StationOptions();

/// `DecoderOptions` for one that is heard as the configuration says.
MpvOptions HeardDecoderOptions(const Config& config);

}  // namespace engine
