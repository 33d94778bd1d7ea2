#include "standin/eventrun/TriggerIndex.hpp"

#include <algorithm>
#include <utility>

namespace standin {
namespace {

constexpr char kSeparator = '\2';

/// The text without its second field, and that field. Empty fields at the end say nothing.
std::pair<std::string, std::string> WithoutSecond(std::string_view text) {
  while (!text.empty() && text.back() == kSeparator) text.remove_suffix(1);
  const std::size_t first = text.find(kSeparator);
  if (first == std::string_view::npos) return {std::string(text), {}};
  const std::size_t second = std::min(text.find(kSeparator, first + 1), text.size());
  return {std::string(text.substr(0, first)) + std::string(text.substr(second)),
          std::string(text.substr(first + 1, second - first - 1))};
}

template <class Entries>
void EraseOf(std::int32_t event, Entries& entries) {
  std::erase_if(entries, [&](const auto& each) { return each.event == event; });
}

}  // namespace

void TriggerIndex::put(std::int32_t event, const Rule* rule) {
  drop(event);
  if (rule == nullptr || !rule->on) return;
  Places places;
  for (std::size_t i = 0; i < rule->triggers.size(); ++i) {
    const Entry entry{event, i};
    const Trigger& trigger = rule->triggers[i];
    if (const auto* plugin = std::get_if<PluginTrigger>(&trigger)) {
      auto [key, second] = WithoutSecond(plugin->stored);
      plugin_[key].push_back({std::move(second), entry});
      places.plugin.push_back(std::move(key));
    } else if (const auto* device = std::get_if<DeviceTrigger>(&trigger)) {
      devices_[device->ref].push_back(entry);
      places.devices.push_back(device->ref);
    } else if (std::holds_alternative<StartTrigger>(trigger)) {
      start_.push_back(entry);
    } else if (std::holds_alternative<ScriptTrigger>(trigger)) {
      scripts_.insert(event);
    }
  }
  places_[event] = std::move(places);
}

void TriggerIndex::drop(std::int32_t event) {
  const auto found = places_.find(event);
  if (found == places_.end()) return;
  for (const std::string& key : found->second.plugin) {
    const auto entries = plugin_.find(key);
    if (entries == plugin_.end()) continue;
    std::erase_if(entries->second, [&](const Stored& each) { return each.entry.event == event; });
    if (entries->second.empty()) plugin_.erase(entries);
  }
  for (const std::int32_t ref : found->second.devices) {
    const auto entries = devices_.find(ref);
    if (entries == devices_.end()) continue;
    EraseOf(event, entries->second);
    if (entries->second.empty()) devices_.erase(entries);
  }
  EraseOf(event, start_);
  scripts_.erase(event);
  places_.erase(found);
}

std::vector<TriggerIndex::Entry> TriggerIndex::ofPlugin(const std::string& composed) const {
  const auto [key, second] = WithoutSecond(composed);
  const auto found = plugin_.find(key);
  std::vector<Entry> entries;
  if (found == plugin_.end()) return entries;
  for (const Stored& each : found->second) {
    // The triggers of one event lie side by side.
    if (!entries.empty() && entries.back().event == each.entry.event) continue;
    if (second == "*" || each.second == "*" || each.second == second) entries.push_back(each.entry);
  }
  return entries;
}

const std::vector<TriggerIndex::Entry>& TriggerIndex::ofDevice(std::int32_t ref) const {
  static const std::vector<Entry> kNone;
  const auto found = devices_.find(ref);
  return found == devices_.end() ? kNone : found->second;
}

}  // namespace standin
