#pragma once
#include <functional>
#include <string>
#include <utility>

#include "base/Platform.hpp"

/// A platform whose message boxes are shown by somebody else.
class UserPlatform : public base::Platform {
 public:
  using Box = std::function<void(base::BoxKind, const std::string& title, const std::string& text)>;

  UserPlatform(base::Platform& machine, Box box) : machine_(machine), box_(std::move(box)) {}

  std::int32_t osMajorVersion() override { return machine_.osMajorVersion(); }
  void setPriorityClass(std::int32_t priorityClass) override { machine_.setPriorityClass(priorityClass); }
  void end() override { machine_.end(); }
  void messageBox(base::BoxKind kind, const std::string& title, const std::string& text) override {
    box_(kind, title, text);
  }
  void emptyFile(const std::string& path) override { machine_.emptyFile(path); }

 private:
  base::Platform& machine_;
  Box box_;
};
