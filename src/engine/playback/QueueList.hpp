#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/playback/Playback.hpp"
#include "player/ManyOut.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// What is played, as a list that may be changed while it plays. The first change takes the titles over into
/// a list of the player's own, so that a stored playlist stays as it is; what sounds goes on.
class QueueList : public player::Playlist, public player::ManyOut {
 public:
  struct Parts {
    std::function<bool()> shown;  ///< false while the player holds something that nobody has chosen
    std::function<player::MediaRef(const player::ToldMedia& told)> mediaOf;
    std::function<void()> edited;  ///< after each change
  };
  QueueList(Playback& playback, Parts parts);

  /// Something else has been chosen to be played.
  void begin();
  /// New at each `begin`; larger than all before, those of earlier players too.
  [[nodiscard]] std::int64_t mark() const { return mark_; }
  /// Of a queue that is taken up again.
  void mark(std::int64_t value) { mark_ = value; }

  [[nodiscard]] std::string name() const override;
  /// Throws 5: its name is that of what was chosen.
  void name(const std::string& value) override;
  [[nodiscard]] std::int32_t count() const override;
  [[nodiscard]] player::MediaRef item(std::int32_t index) const override;
  void appendItem(const player::MediaRef& media) override { insertItem(count(), media); }
  void insertItem(std::int32_t index, const player::MediaRef& media) override;
  /// What is put in right behind the current item, or moved there, is played next, in shuffled order too.
  void insertItems(std::int32_t index, const std::vector<player::ToldMedia>& items) override;
  void removeItem(const player::MediaRef& media) override;
  void removeItems(const std::vector<std::int32_t>& places) override;
  void moveItem(std::int32_t oldIndex, std::int32_t newIndex) override;
  [[nodiscard]] std::int64_t revision() const override;

 private:
  /// What tells one state of the list from another where it is not changed here.
  struct Seen {
    const player::Playlist* list = nullptr;
    std::int64_t mark = 0;
    std::int64_t revision = 0;
    std::int32_t count = 0;
    bool operator==(const Seen&) const = default;
  };
  [[nodiscard]] player::PlaylistRef held() const;
  [[nodiscard]] Seen seen() const;
  /// Whatever has changed since the last look was others' doing, and counts as one step.
  void countOthers() const;
  void insert(std::int32_t index, const std::vector<player::MediaRef>& media);
  /// Has `work` change the player's own list. `steps`: items put in, taken out or moved.
  template <class Work>
  void change(std::int64_t steps, Work work);

  Playback& playback_;
  Parts parts_;
  player::PlaylistRef own_;  ///< as long as it is what is played
  std::int64_t mark_;
  mutable Seen seen_;
  mutable std::int64_t revision_;
};

}  // namespace engine
