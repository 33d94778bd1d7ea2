#pragma once
#include "standin/hearing/VoiceCommands.hpp"
#include "standin/room/RoomMicrophone.hpp"
#include "standin/routes/Route.hpp"

namespace standin {

/// What has become of something that was said, as pages are told it. Its status is an error's unless it was
/// done.
WebAnswer AnswerOf(const Understanding& understanding);
/// The recogniser, the patterns as they are read, and what may be sent. Of each choice the first hundred, of
/// each sentence the first hundred parts, and of a pattern some thousands in all. What the machine lacks and
/// where is for its owner alone.
WebAnswer StateOf(const House& house, VoiceCommands& voice, bool owner);

/// Tells one text of a pattern from another: who saves one says which he began from.
std::string VersionOf(const std::string& pattern);
/// The server's own microphone, and what was heard by it last. For the owner alone.
WebAnswer RoomOf(const RoomMicrophone::Status& room);

}  // namespace standin
