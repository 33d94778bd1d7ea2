#pragma once
#include <map>
#include <string>
#include <vector>

#include "engine/decoder/Output.hpp"

namespace engine::testing {

/// What an output tells of its entries.
class ToldByOutput : public OutputEvents {
 public:
  void started(EntryId entry) override { startedOnes.push_back(entry); }
  void heightKnown(EntryId /*entry*/, std::int32_t /*height*/) override {}
  void lengthKnown(EntryId entry, double seconds) override { lengths[entry] = seconds; }
  void titleTold(EntryId /*entry*/, const std::string& /*title*/) override {}
  void ended(EntryId entry) override { endedOnes.push_back(entry); }
  void failed(EntryId entry, const std::string& /*reason*/) override { failedOnes.push_back(entry); }
  void stalled(bool /*value*/) override {}

  std::vector<EntryId> startedOnes;
  std::vector<EntryId> endedOnes;
  std::vector<EntryId> failedOnes;
  std::map<EntryId, double> lengths;
};

}  // namespace engine::testing
