#include "support/JsonText.hpp"

#include <nlohmann/json.hpp>

nlohmann::json support::JsonOf(const std::string& text) { return nlohmann::json::parse(text); }

nlohmann::json support::JsonIfAny(const std::string& text) {
  return nlohmann::json::parse(text, nullptr, false);
}

std::string support::TextOf(const nlohmann::json& json) { return json.dump(); }
