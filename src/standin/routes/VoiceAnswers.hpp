#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "standin/hearing/VoiceCommands.hpp"
#include "standin/routes/Route.hpp"

namespace standin {

/// What has become of something that was said, as pages are told it. Its status is an error's unless it was
/// done.
WebAnswer AnswerOf(const Understanding& understanding);
/// The recogniser, the patterns as they are read, and what may be sent. Of each choice the first hundred.
WebAnswer StateOf(const House& house, VoiceCommands& voice);
/// The first hundred choices of a bracket that hold what is sought, whatever its case and accents, and how
/// many there are. `place` leads to the bracket: the numbers, from 0, of a sentence, a part of it, a choice
/// of that and so on, with dots between them.
WebAnswer ChoicesOf(VoiceCommands& voice, std::int32_t event, std::string_view place,
                    const std::string& sought);

}  // namespace standin
