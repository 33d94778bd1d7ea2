#pragma once
#include <cstdint>
#include <string>

namespace catalogue {

/// Where a long walk of the library shows how far it is. `Disp_ProgBar` and `Hide_ProgBar` come in pairs and
/// may nest. None of them throws.
class Progress {
 public:
  Progress() = default;
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  Progress(Progress&&) = delete;
  Progress& operator=(Progress&&) = delete;
  virtual ~Progress() = default;

  /// `name` only names the caller.
  virtual void Disp_ProgBar(const std::string& name) = 0;
  /// `fraction` from 0 to 1.
  virtual void Update_ProgBar(float fraction) = 0;
  virtual void Hide_ProgBar(const std::string& name) = 0;
};

/// The progress of one walk: shown while this lives.
class ProgressShown {
 public:
  ProgressShown(Progress& progress, std::string name) : progress_(progress), name_(std::move(name)) {
    progress_.Disp_ProgBar(name_);
  }
  ProgressShown(const ProgressShown&) = delete;
  ProgressShown& operator=(const ProgressShown&) = delete;
  ProgressShown(ProgressShown&&) = delete;
  ProgressShown& operator=(ProgressShown&&) = delete;
  ~ProgressShown() { progress_.Hide_ProgBar(name_); }

  /// Reports that `done` of `all` items are behind.
  void update(std::int64_t done, std::int64_t all) {
    progress_.Update_ProgBar(static_cast<float>(done) / static_cast<float>(all));
  }

 private:
  Progress& progress_;
  std::string name_;
};

/// Long walks give the host a turn at their first item and at every 50th behind it.
inline bool YieldsAt(std::int64_t index) { return index % 50 == 0; }

}  // namespace catalogue
