#pragma once
#include "standin/hearing/VoiceCommands.hpp"
#include "standin/routes/Route.hpp"

namespace standin {

/// What has become of something that was said, as pages are told it. Its status is an error's unless it was
/// done.
WebAnswer AnswerOf(const Understanding& understanding);
/// The recogniser, the patterns as they are read, and what may be sent. Of each choice the first hundred.
/// What the machine lacks and where is for its owner alone.
WebAnswer StateOf(const House& house, VoiceCommands& voice, bool owner);

}  // namespace standin
