#pragma once
#include <algorithm>
#include <cstdint>
#include <string>

#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {

/// JSON that is written as it comes, without a tree of it in between: for long lists.
class JsonWriter {
 public:
  void open(char bracket) {
    separate();
    text_ += bracket;
    first_ = true;
  }
  void close(char bracket) {
    text_ += bracket;
    first_ = false;
  }
  /// Before the value of a field.
  JsonWriter& key(const char* name) {
    separate();
    text_ += '"';
    text_ += name;
    text_ += "\":";
    first_ = true;
    return *this;
  }
  void put(const std::string& text) {
    separate();
    const bool plain = std::none_of(text.begin(), text.end(), [](char c) {
      return static_cast<unsigned char>(c) < ' ' || c == '"' || c == '\\';
    });
    if (plain && base::IsPlainUtf8(text)) {
      text_ += '"';
      text_ += text;
      text_ += '"';
    } else {
      text_ += Dump(text);
    }
  }
  void put(std::int64_t number) { raw(std::to_string(number)); }
  void put(bool flag) { raw(flag ? "true" : "false"); }
  void putNothing() { raw("null"); }
  void put(const nlohmann::json& json) { raw(Dump(json)); }

  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  void raw(const std::string& value) {
    separate();
    text_ += value;
  }
  /// What follows a value of the same list or object stands behind a comma.
  void separate() {
    if (!first_) text_ += ',';
    first_ = false;
  }

  std::string text_;
  bool first_ = true;
};

}  // namespace standin
