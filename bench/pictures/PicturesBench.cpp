#include <gdk-pixbuf/gdk-pixbuf.h>

#include <memory>

#include "catalogue/Ratio.hpp"
#include "demo/Cover.hpp"
#include "pictures/Picture.hpp"

// A cover made small: `ratio` to decoding the same picture and nothing more; `a_second` so many on one core.
namespace {

std::string Cover(int side, bool jpeg) {
  std::string png = engine::demo::CoverPng(7, side);
  return jpeg ? pictures::Thumbnail(png, side) : png;
}

void Decode(const std::string& bytes) {
  GdkPixbufLoader* loader = gdk_pixbuf_loader_new();
  gdk_pixbuf_loader_write(loader, reinterpret_cast<const guchar*>(bytes.data()), bytes.size(), nullptr);
  gdk_pixbuf_loader_close(loader, nullptr);
  benchmark::DoNotOptimize(gdk_pixbuf_loader_get_pixbuf(loader));
  g_object_unref(loader);
}

void MakeSmall(benchmark::State& state, bool jpeg, int size) {
  const std::string cover = Cover(static_cast<int>(state.range(0)), jpeg);
  bench::Compare(
      state, 1, [&] { benchmark::DoNotOptimize(pictures::Thumbnail(cover, size)); }, [&] { Decode(cover); });
  state.counters["a_second"] = 1e9 / state.counters["ns_per_item"];
}

BENCHMARK_CAPTURE(MakeSmall, Jpeg256, true, 256)
    ->Arg(500)
    ->Arg(1400)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MakeSmall, Png256, false, 256)
    ->Arg(500)
    ->Arg(1400)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MakeSmall, Jpeg1024, true, 1024)->Arg(1400)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
