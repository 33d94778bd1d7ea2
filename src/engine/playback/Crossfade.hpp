#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Loop.hpp"
#include "engine/common/Poster.hpp"
#include "engine/decoder/Output.hpp"

namespace engine {

/// An output in which one title goes over into the next. A second output is there while both sound, and for
/// the moment before in which it opens its title; then the first one goes. The end of a title is told when
/// the last of its sound has been heard, and only then the start of the next one, which has a position by
/// then. What can't go over follows without a fade: titles shorter than two fades or of unknown length, what
/// can't be opened in time, and tracks that belong together.
class Crossfade : public Output {
 public:
  using MakeOutput = std::function<std::unique_ptr<Output>(OutputEvents& events)>;
  /// Whether the second belongs behind the first, as in an album, so that they follow each other without a
  /// gap.
  using Together = std::function<bool(const std::string& first, const std::string& second)>;

  /// Throws as `make`, which is called at once and before each fade.
  Crossfade(base::Loop& loop, double seconds, MakeOutput make, Together together);
  ~Crossfade() override;
  Crossfade(const Crossfade&) = delete;
  Crossfade& operator=(const Crossfade&) = delete;
  Crossfade(Crossfade&&) = delete;
  Crossfade& operator=(Crossfade&&) = delete;

  /// Set once, before anything is played.
  void listener(OutputEvents& events) { events_ = &events; }

  void load(EntryId entry, const std::string& location) override;
  void append(EntryId entry, const std::string& location) override;
  bool dropNext() override;
  void stop() override;
  void pause(bool value) override;
  void seek(double seconds) override;
  [[nodiscard]] double position() const override { return now_->output->position(); }
  void speed(double factor) override;
  void volume(std::int32_t percent) override;
  void mute(bool value) override;
  void look(base::PictureSize size) override;

 private:
  /// One output and what it has told.
  struct Deck : OutputEvents {
    explicit Deck(Crossfade& whose) : owner(whose) {}
    void started(EntryId entry) override;
    void heightKnown(EntryId entry, std::int32_t height) override;
    void lengthKnown(EntryId entry, double seconds) override;
    void titleTold(EntryId entry, const std::string& title) override;
    void ended(EntryId entry) override;
    void failed(EntryId entry, const std::string& reason) override;
    void stalled(bool value) override;
    /// Tells what it has told since it was opened.
    void tellAll(OutputEvents& events) const;

    Crossfade& owner;
    EntryId entry = 0;
    double length = 0;
    std::int32_t height = 0;
    bool ready = false;
    bool over = false;
    std::string title;
    std::optional<std::string> failure;
    std::unique_ptr<Output> output;
  };

  std::unique_ptr<Deck> makeDeck();
  [[nodiscard]] bool sounds(const Deck& deck) const { return &deck == now_.get(); }
  void look();
  void prepare();
  /// The volumes for where the fade is.
  void mix();
  /// What sounds has ended: the next one's turn.
  void moveOn();
  /// Without the second output; the first is as loud as ever.
  void dropSecond();
  /// Outputs go on a turn of their own, as it may be their own event.
  void retire(std::unique_ptr<Deck> deck);
  void forgetNext();
  void lookIn(double seconds);

  double seconds_;
  MakeOutput make_;
  Together together_;
  OutputEvents* events_ = nullptr;
  std::unique_ptr<base::Timer> timer_;
  std::unique_ptr<Deck> now_;
  std::unique_ptr<Deck> second_;
  std::string location_;
  EntryId next_ = 0;
  std::string nextLocation_;
  bool handedOn_ = false;  ///< the first output itself goes on to the next title
  bool fading_ = false;
  bool refused_ = false;  ///< no second output could be made for this title
  double span_ = 0;       ///< seconds that the fade lasts
  bool paused_ = false;
  std::int32_t volume_ = 100;
  bool mute_ = false;
  base::PictureSize size_;  ///< how large the picture of what sounds is looked at
  Poster post_;
};

}  // namespace engine
