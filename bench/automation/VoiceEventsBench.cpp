#include <algorithm>

#include "Brief.hpp"
#include "automation/VoiceEvents.hpp"
#include "base/Text.hpp"
#include "catalogue/BenchLibrary.hpp"
#include "catalogue/MediaKey.hpp"
#include "catalogue/Ratio.hpp"

// A category's device, voice command and menu made anew.
namespace {

/// A host whose devices and events are all one object, which keeps how much it was given.
class OneObjectHost : public base::Object, public std::enable_shared_from_this<OneObjectHost> {
 public:
  base::Value call(std::string_view name, base::Args& args) override {
    if (name == "DeviceValuesAdd") values = base::ToText(args.at(1)).size();
    if (name.starts_with("Get") || name == "NewDevFunc") return base::ObjectRef(shared_from_this());
    return {};
  }
  base::Value get(std::string_view name) override {
    if (name == "ev_devices") return base::ObjectRef(shared_from_this());
    return name == "Count" ? std::int32_t{0} : std::int32_t{1};
  }
  void put(std::string_view name, const base::Value& value) override {
    if (name == "vcmd") spoken = base::ToText(value).size();
  }
  std::size_t values = 0;
  std::size_t spoken = 0;
};

/// `ratio`: to a sort of the same keys without regard to case. Behind the 32,767th name the run ends, as its
/// counter does, and nothing is stored: what it has cost until then is what 100,000 names cost.
void UpdateMediaEvents(benchmark::State& state) {
  bench::BenchLibrary library(static_cast<std::size_t>(state.range(0)));
  bench::BenchHouse house(library);
  const auto host = std::make_shared<OneObjectHost>();
  house.host.Host = host;
  plugin::Settings settings(house.host);
  plugin::MediaMenus menus;
  automation::Devices devices(house.host, settings, house.loggers, house.state, house.platform);
  automation::VoiceEvents voice({devices, *house.catalogue, house.progress, house.stale, menus, house.host,
                                 house.loggers, house.state});
  std::vector<std::string> keys;
  for (const std::string& name : library.names()) catalogue::MakeMediaKey(name, keys.emplace_back());
  bench::Compare(
      state, static_cast<double>(state.range(0)), [&] { voice.UpdateMediaEvents("Album"); },
      [&] {
        std::vector<std::string> sorted = keys;
        std::sort(sorted.begin(), sorted.end(), base::FoldedLess());
        benchmark::DoNotOptimize(sorted.data());
      });
  state.counters["values_MB"] = static_cast<double>(host->values) / 1e6;
  state.counters["spoken_MB"] = static_cast<double>(host->spoken) / 1e6;
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(10'000);
  if (!bench::Brief()) bench->Arg(100'000);
  bench->Unit(benchmark::kMillisecond)->UseManualTime();
}
BENCHMARK(UpdateMediaEvents)->Apply(Sizes);

}  // namespace
