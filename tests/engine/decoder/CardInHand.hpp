#pragma once
#include <atomic>
#include <future>
#include <memory>
#include <string>
#include <utility>

#include "base/Failure.hpp"
#include "engine/card/EglCard.hpp"

namespace engine::testing {

/// What a card is to do, and what it has done. It outlives the card.
struct CardPlan {
  int readsThatWork = -1;        ///< then each fails; all work below 0
  int mostWidth = 1 << 30;       ///< of a picture that it has room for
  bool functions = true;         ///< it has those of OpenGL
  std::shared_future<void> may;  ///< if valid, it opens only then
  std::atomic<int> opened{0};
  std::atomic<int> read{0};
  std::atomic<int> closed{0};
};

/// The machine's own, which goes by a plan.
class CardInHand : public GraphicsCard {
 public:
  explicit CardInHand(std::shared_ptr<CardPlan> plan) : plan_(std::move(plan)) { ++plan_->opened; }
  ~CardInHand() override {
    real_.reset();
    ++plan_->closed;
  }
  CardInHand(const CardInHand&) = delete;
  CardInHand& operator=(const CardInHand&) = delete;
  CardInHand(CardInHand&&) = delete;
  CardInHand& operator=(CardInHand&&) = delete;

  [[nodiscard]] std::string name() const override { return "a card in hand"; }
  [[nodiscard]] void* function(const char* name) const override {
    return plan_->functions ? real_->function(name) : nullptr;
  }
  unsigned framebuffer(base::PictureSize size) override {
    if (size.width > plan_->mostWidth) throw base::Failure(base::number::kCannotCreate, "it is too large");
    return real_->framebuffer(size);
  }
  void read(base::PictureFrame& frame) override {
    if (plan_->read == plan_->readsThatWork) throw base::Failure(base::number::kCannotCreate, "it is lost");
    real_->read(frame);
    ++plan_->read;
  }

  static OpenCard By(const std::shared_ptr<CardPlan>& plan) {
    return [plan] {
      if (plan->may.valid()) plan->may.wait();
      return std::make_unique<CardInHand>(plan);
    };
  }

 private:
  std::shared_ptr<CardPlan> plan_;
  std::unique_ptr<EglCard> real_ = std::make_unique<EglCard>("libEGL.so.1", true);
};

}  // namespace engine::testing
