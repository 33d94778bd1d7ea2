// Rules as JSON, stored texts of the plug-in, steps and evaluations with arbitrary content: refused in the
// way that is agreed, or read; what is read and written again is the same.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/Text.hpp"
#include "fuzz/Alphabet.hpp"
#include "standin/rules/EvaluationJson.hpp"
#include "standin/rules/PluginWords.hpp"
#include "standin/rules/RuleJson.hpp"
#include "standin/rules/RuleSteps.hpp"
#include "standin/rules/Wordings.hpp"

namespace {

using namespace standin;  // NOLINT(google-build-using-namespace): a fuzzer of one part
using Json = nlohmann::json;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// Fails with nothing but the failures that are agreed.
template <class Work>
void MayRefuse(Work work) {
  try {
    work();
  } catch (const base::Failure& failure) {
    Require(!failure.description().empty());
  }
}

/// A value that a field could have, or nearly.
Json ValueFrom(FuzzedDataProvider& data, int depth) {
  static const std::string words[] = {
      "plugin",  "time",    "sun",      "every", "start",
      "device",  "script",  "window",   "days",  "speak",
      "wait",    "event",   "fade",     "wake",  "sunset",
      "sunrise", "status",  "value",    "text",  "changes",
      "equals",  "above",   "below",    "on",    "off",
      "press",   "nothing", "pause",    "stop",  "leave",
      "restart", "queue",   "together", "22:00", "06:30",
      "24:00",   "5",       "1e999",    "",      "Media Player\2Media Player Actions\2Play: Album\2\2Blue"};
  switch (data.ConsumeIntegralInRange(0, depth > 0 ? 8 : 6)) {
    case 0: return nullptr;
    case 1: return data.ConsumeBool();
    case 2: return data.ConsumeIntegralInRange<std::int64_t>(-5, 100'000);
    case 3: return data.ConsumeIntegral<std::uint64_t>();
    case 4: return data.ConsumeFloatingPoint<double>();
    case 5: return base::RepairUtf8(data.ConsumeRandomLengthString(40));
    case 6: return data.PickValueInArray(words);
    case 7: {
      Json list = Json::array();
      const int count = data.ConsumeIntegralInRange(0, 4);
      for (int i = 0; i < count; ++i) list.push_back(ValueFrom(data, depth - 1));
      return list;
    }
    default: break;
  }
  static const std::string fields[] = {
      "kind",     "stored",     "at",      "days", "what",  "offset",  "minutes", "ref",
      "field",    "is",         "value",   "not",  "from",  "to",      "command", "caption",
      "text",     "seconds",    "name",    "id",   "then",  "choices", "words",   "volume",
      "triggers", "conditions", "actions", "any",  "again", "group",   "version", "on"};
  Json object = Json::object();
  const int count = data.ConsumeIntegralInRange(0, 8);
  for (int i = 0; i < count; ++i) {
    const std::string& field = data.PickValueInArray(fields);
    object[field] = ValueFrom(data, depth - 1);
  }
  return object;
}

void CheckRule(const Json& json) {
  MayRefuse([&] {
    const RuledEvent event = RuledEventOf(json);
    Require(RuledEventOf(JsonOf(event)) == event);
    Require(RuleOfText(TextOf(event.rule)) == event.rule);
    RuleStep step;
    step.event = event.id;
    step.before = WholeEvent{event, {}};
    step.after = WholeEvent{event, {}};
    step.before->event.id = event.id;
    const RuleStep again = StepOfText(TextOf(step));
    Require(again.before->rule == event && again.after->rule == event && WordsOf(again) == WordsOf(step));
  });
}

void CheckText(const std::string& text) {
  MayRefuse([&] { Require(RuleOfText(TextOf(RuleOfText(text))) == RuleOfText(text)); });
  MayRefuse([&] { static_cast<void>(StepOfText(text)); });
  MayRefuse([&] {
    const Evaluation evaluation = EvaluationOfText(text);
    Require(EvaluationOfText(JsonOf(evaluation).dump(-1, ' ', false, Json::error_handler_t::replace)).id ==
            evaluation.id);
  });
  for (const char c : PluginWords::bare(text)) Require(static_cast<unsigned char>(c) >= ' ');
  RuleStep step;
  step.event = 1;
  step.kind = RuleStep::Kind::kDelete;
  step.before = WholeEvent{};
  step.before->rule.id = 1;
  step.before->event.id = 1;
  step.before->event.vcmd = text;
  Require(StepOfText(TextOf(step)).before->event.vcmd == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CheckText(std::string(reinterpret_cast<const char*>(data), size));
  CheckText(support::Spelled(data, size));
  FuzzedDataProvider provider(data, size);
  CheckRule(ValueFrom(provider, 4));
  Json whole{{"name", "x"}};
  for (const char* list : {"triggers", "conditions", "actions"})
    whole[list] = Json::array({ValueFrom(provider, 2)});
  CheckRule(whole);
  return 0;
}
