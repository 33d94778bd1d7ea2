#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "standin/ear/Recogniser.hpp"
#include "standin/hearing/HouseGrammar.hpp"
#include "standin/hearing/Questions.hpp"
#include "standin/hearing/Sentences.hpp"
#include "standin/hearing/Understanding.hpp"
#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/house/House.hpp"
#include "standin/player/PlayerLibrary.hpp"
#include "standin/player/PluginKeeper.hpp"
#include "standin/voice/Speech.hpp"

namespace standin {

/// Somebody who says something to the house.
struct Speaker {
  /// Tells apart those who are asked back: what one has begun no other one goes on with.
  std::string session;
  /// What a guest types is done. But the house doesn't answer him aloud, or he could talk in a room that he
  /// isn't in.
  bool guest = false;
  /// It was heard in the room of the house itself. What isn't understood there may have been meant for
  /// somebody else, or was a television's: the house doesn't talk about it.
  bool room = false;
};

/// The one way in for all that is said to the house, be it typed, spoken or a script's: it finds the events
/// whose pattern fits, and calls their devices with the command. All use is on the loop's thread.
class VoiceCommands {
 public:
  struct Parts {
    bus::PollLoop& loop;
    House& house;
    HouseObjects& objects;
    PluginKeeper& plugin;
    PlayerLibrary& library;
    Speech& speech;
    Recogniser& recogniser;
    Worker* worker = nullptr;  ///< where the grammar is made; without it, here and now
  };
  explicit VoiceCommands(const Parts& parts);
  ~VoiceCommands();
  VoiceCommands(const VoiceCommands&) = delete;
  VoiceCommands& operator=(const VoiceCommands&) = delete;
  VoiceCommands(VoiceCommands&&) = delete;
  VoiceCommands& operator=(VoiceCommands&&) = delete;

  /// Called once, now or later.
  using Answered = std::function<void(const Understanding& understanding)>;
  void say(const Speaker& who, const std::string& text, const Answered& answered);
  /// Sound as `Recogniser` takes it.
  void listen(const Speaker& who, std::vector<std::int16_t> sound, const Answered& answered);
  /// Sound that is still being spoken, and what becomes of it at its end.
  std::unique_ptr<Recogniser::Growing> begin();
  void end(const Speaker& who, std::shared_ptr<Recogniser::Growing> sound, const Answered& answered);

  /// What that session was asked can't be answered any more.
  void forgetQuestion(const std::string& session) { questions_.forget(session); }

  /// Has the recogniser know what can be said now, and from now on follow its changes; one that has failed is
  /// tried again. It costs memory, so it is not started for somebody who never speaks.
  void wake();
  [[nodiscard]] HouseGrammar& grammar() { return grammar_; }
  /// Of the recogniser, which may still wait for the grammar that it is to learn.
  [[nodiscard]] Recogniser::Status hearing() const;
  /// Whether the house says its answers aloud.
  [[nodiscard]] bool speaks() const;
  void speaks(bool on);
  /// A pattern has been changed by somebody who is not the plug-in, or may have been.
  void patternsChanged();

 private:
  /// What the words ask for, and of whom.
  struct Order {
    Understanding understanding;
    std::vector<std::int32_t> refs;
    bool adds = false;
    std::string album{};                        ///< that is played, as the library calls it
    std::string label{};                        ///< the command as a person knows it
    std::optional<base::Milliseconds> until{};  ///< nobody expects it to be done later
  };
  using Choice = Understanding::Choice;

  void teach();
  /// Has done what was heard, and answers it.
  Recogniser::Told told(const Speaker& who, const Answered& answered);
  /// Answers what the house says to it if nothing goes wrong.
  std::string answer(const Speaker& who, const std::string& text, const Answered& answered);
  [[nodiscard]] Order orderFor(const std::string& text, bool spoken);
  [[nodiscard]] std::optional<Order> answerOf(const std::string& who, const std::string& text, bool spoken);
  [[nodiscard]] Order orderOf(const std::vector<Said>& said, const std::string& text);
  std::string take(const std::string& who, Order order, const Answered& answered);
  void carryOut(const Order& order, const Answered& answered);
  /// The same; then players make room again for those who still speak, where they came back for the command.
  [[nodiscard]] Answered andGoOn(const Answered& answered, const std::shared_ptr<bool>& cameBack);
  void add(const Order& order, PluginKeeper::Command command, const Answered& answered);
  void wordAnswer(Order& order) const;
  void withArtist(Understanding understanding, const std::string& album, const Answered& answered);
  /// Answers aloud too, where that is wished.
  Answered aloud(const Speaker& who, const Answered& answered);
  void remember(const std::string& who, const Understanding& understanding);

  Parts parts_;
  WorkHere here_;
  HouseGrammar grammar_;
  Sentences sentences_;
  Questions questions_;
  bool awake_ = false;
  std::uint64_t learnt_ = 0;  ///< revision of the grammar that the recogniser was given
  std::unique_ptr<base::Timer> follow_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

/// "A", "A or B", "A, B or C", each in quotation marks.
std::string Alternatives(const std::vector<std::string>& texts);

}  // namespace standin
