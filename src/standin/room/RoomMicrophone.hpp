#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "standin/hearing/VoiceCommands.hpp"
#include "standin/house/House.hpp"
#include "standin/process/ChildProgram.hpp"
#include "standin/room/CapturePrograms.hpp"
#include "standin/room/EnergyGate.hpp"
#include "standin/room/SourceCheck.hpp"
#include "standin/voice/Quiet.hpp"
#include "standin/voice/Speech.hpp"

namespace standin {

/// The server's own microphone: listens in the room that the server stands in, where that is wished, and has
/// what somebody says there done. Whoever is in the room speaks as the owner of the house, who has asked for
/// it; a question that is asked back is answered in the room, too, and players that have made room for it
/// wait some seconds for the answer. It is off until it is switched on, and hears nothing while the house
/// speaks or somebody holds a page's button, who is heard there.
///
/// Where players have made room twice for what nobody has understood, they are left alone for a while, which
/// grows: it is the music itself that is heard, or a television.
///
/// The sound is recorded by a process of its own. One that isn't there, dies or gives what is no sound is
/// told, and started again by itself after a pause that grows. All use is on the loop's thread.
class RoomMicrophone {
 public:
  struct Parts {
    bus::PollLoop& loop;
    House& house;
    VoiceCommands& voice;
    Quiet& quiet;
    Speech& speech;
    /// Those that are tried.
    const std::vector<CaptureProgram>& programs = CapturePrograms();
  };
  /// Listens at once where it was switched on.
  explicit RoomMicrophone(const Parts& parts);
  ~RoomMicrophone();
  RoomMicrophone(const RoomMicrophone&) = delete;
  RoomMicrophone& operator=(const RoomMicrophone&) = delete;
  RoomMicrophone(RoomMicrophone&&) = delete;
  RoomMicrophone& operator=(RoomMicrophone&&) = delete;

  /// Is kept. To switch it on again tries at once what has failed.
  void on(bool wished);
  enum class State { kOff, kStarting, kListening, kFailed };
  struct Status {
    State state = State::kOff;
    std::string trouble{};                ///< what is wrong, and what to do about it
    std::uint64_t heard = 0;              ///< how often somebody was
    std::uint64_t samples = 0;            ///< that have come from the microphone
    std::optional<Understanding> last{};  ///< what became of it the last time
  };
  [[nodiscard]] const Status& status() const { return status_; }
  /// Of the process that records; -1 where there is none.
  [[nodiscard]] pid_t process() const { return child_ ? child_->process() : -1; }

 private:
  static constexpr base::Milliseconds kShortestPause = std::chrono::seconds(5);
  static constexpr base::Milliseconds kShortestPeace = std::chrono::minutes(1);

  void begin();
  void startNext();
  void come(std::string& bytes);
  void look();
  void failed(const std::string& why);
  void drop();
  void enter(State state, const std::string& trouble = {});
  void begins();
  void ends();
  void nothing();
  /// Players come back when nobody speaks any more and all is answered.
  void quietEnds();
  void understood(const Understanding& understanding);
  /// What else begins to play is another room.
  void hearPlayer(const Device& device);
  [[nodiscard]] bool makesRoom() const;
  /// Somebody may answer a question, for so many samples more; 0: nobody does any more.
  void awaitAnswer(std::size_t samples);
  /// Later, as players are waited for, unless this is gone by then.
  void soon(std::function<void()> work);

  Parts parts_;
  Status status_;
  EnergyGate gate_;
  std::size_t next_ = 0;               ///< of the programs
  std::vector<std::string> troubles_;  ///< of those that were tried since one has worked
  std::optional<SourceCheck> check_;
  std::unique_ptr<ChildProgram> child_;
  std::shared_ptr<Recogniser::Growing> sound_;  ///< of who speaks now
  std::uint64_t turn_ = 0;  ///< of the process: one that has been given up may still have something to tell
  int unanswered_ = 0;
  bool quiet_ = false;            ///< players make room, as far as the sound has come
  std::size_t answerWithin_ = 0;  ///< samples
  int inVain_ = 0;                ///< utterances in a row that players have made room for
  base::Milliseconds peace_ = kShortestPeace;
  base::Milliseconds peaceUntil_{0};
  std::map<std::string, std::string> playing_;  ///< what the player's devices have told last
  base::Milliseconds pause_ = kShortestPause;
  std::unique_ptr<base::Timer> again_;
  std::unique_ptr<base::Timer> look_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  DeviceHearing devices_;
};

}  // namespace standin
