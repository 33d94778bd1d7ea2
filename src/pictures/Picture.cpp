#include "pictures/Picture.hpp"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "pictures/Outline.hpp"
#include "pictures/PngRows.hpp"
#include "pictures/Shrinking.hpp"

namespace pictures {
namespace {

constexpr const char* kJpegQuality = "88";

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
using Loader = std::unique_ptr<GdkPixbufLoader, Unref>;
using Pixbuf = std::unique_ptr<GdkPixbuf, Unref>;

/// How a picture is to be read.
struct Wish {
  int side = 0;  ///< the longer side; 0 leaves the picture as it is
  bool refused = false;
};

/// The same shape within a square of that side; never larger than it is.
Size SmallerOf(Size size, int side) {
  const int longer = std::max(size.width, size.height);
  if (longer <= side) return size;
  const auto scaled = [&](int length) {
    return std::max(1, static_cast<int>(std::lround(static_cast<double>(length) * side / longer)));
  };
  return {scaled(size.width), scaled(size.height)};
}

void OnSize(GdkPixbufLoader* loader, int width, int height, gpointer data) {
  auto& wish = *static_cast<Wish*>(data);
  wish.refused = !WithinBounds({width, height});
  if (wish.refused) {
    // A size of nothing keeps the loader from unpacking.
    gdk_pixbuf_loader_set_size(loader, 0, 0);
    return;
  }
  if (wish.side <= 0 || std::max(width, height) <= wish.side) return;
  const Size size = SmallerOf({width, height}, wish.side);
  gdk_pixbuf_loader_set_size(loader, size.width, size.height);
}

/// Whether it is whole, and takes no more room and work than a large picture does.
bool IsFit(const Outline& outline) {
  constexpr std::int64_t kMostWork = std::int64_t{16} * kMostPixels;
  return outline.loader != nullptr && outline.whole && WithinBounds(outline.size) &&
         std::int64_t{outline.passes} * outline.size.width * outline.size.height <= kMostWork;
}

/// The decoded picture, null for what can't be decoded to its end.
Pixbuf Decoded(const Outline& outline, const std::string& all, Wish& wish) {
  constexpr std::size_t kPiece = std::size_t{64} << 10U;
  if (!IsFit(outline)) return nullptr;
  const std::string& bytes = outline.still.empty() ? all : outline.still;
  const Loader loader(gdk_pixbuf_loader_new_with_type(outline.loader, nullptr));
  if (!loader) return nullptr;
  g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(&OnSize), &wish);
  bool good = true;
  for (std::size_t at = 0; good && !wish.refused && at < bytes.size(); at += kPiece) {
    good = gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(bytes.data() + at),
                                   std::min(kPiece, bytes.size() - at), nullptr) != FALSE;
  }
  // Must be closed in any case.
  good = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE && good;
  GdkPixbuf* picture = good && !wish.refused ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
  if (picture == nullptr) return nullptr;
  return Pixbuf(GDK_PIXBUF(g_object_ref(picture)));
}

/// The same by its rows, which takes no room for all of it.
Pixbuf ShrunkByRows(const Outline& outline, const std::string& bytes, int side) {
  if (!IsFit(outline)) return nullptr;
  const Size size = SmallerOf(outline.size, side);
  Shrinking shrinking(outline.size, size);
  if (!ReadPngRows(bytes, [&](const std::uint8_t* row) { shrinking.add(row); })) return nullptr;
  const std::vector<std::uint8_t>& pixels = shrinking.pixels();
  const std::unique_ptr<GBytes, decltype(&g_bytes_unref)> copy(g_bytes_new(pixels.data(), pixels.size()),
                                                               &g_bytes_unref);
  constexpr int kColours = 3;
  constexpr int kBits = 8;
  return Pixbuf(gdk_pixbuf_new_from_bytes(copy.get(), GDK_COLORSPACE_RGB, FALSE, kBits, size.width,
                                          size.height, kColours * size.width));
}

/// As the camera or scanner says that it is to be held.
Pixbuf UprightOf(Pixbuf picture) {
  Pixbuf upright(gdk_pixbuf_apply_embedded_orientation(picture.get()));
  return upright ? std::move(upright) : std::move(picture);
}

/// A JPEG lets nothing through.
Pixbuf OnWhite(Pixbuf picture) {
  constexpr guint32 kWhite = 0xFFFFFF;
  constexpr int kSolid = 255;
  constexpr int kSquare = 64;  // of a pattern of two colours, which are the same here
  if (gdk_pixbuf_get_has_alpha(picture.get()) == FALSE) return picture;
  return Pixbuf(gdk_pixbuf_composite_color_simple(picture.get(), gdk_pixbuf_get_width(picture.get()),
                                                  gdk_pixbuf_get_height(picture.get()), GDK_INTERP_NEAREST,
                                                  kSolid, kSquare, kWhite, kWhite));
}

}  // namespace

Size SizeOf(const std::string& bytes) { return OutlineOf(bytes).size; }

bool CanBeShown(const std::string& bytes) {
  constexpr int kTimesSmaller = 8;  // than it is: the kind's own way of unpacking less
  if (bytes.size() > kMostBytes) return false;
  const Outline outline = OutlineOf(bytes);
  if (outline.byRows) return IsFit(outline) && ReadPngRows(bytes, [](const std::uint8_t*) {});
  Wish wish;
  if (std::string_view("jpeg") == (outline.loader != nullptr ? outline.loader : ""))
    wish.side = std::max(1, std::max(outline.size.width, outline.size.height) / kTimesSmaller);
  return Decoded(outline, bytes, wish) != nullptr;
}

std::string Thumbnail(const std::string& bytes, int side) {
  if (bytes.size() > kMostBytes) return {};
  const Outline outline = OutlineOf(bytes);
  Wish wish;
  wish.side = side;
  Pixbuf picture = outline.byRows ? ShrunkByRows(outline, bytes, side) : Decoded(outline, bytes, wish);
  if (!picture) return {};
  // Some loaders take no notice of the size that is wished for.
  const int width = gdk_pixbuf_get_width(picture.get());
  const int height = gdk_pixbuf_get_height(picture.get());
  if (const int longer = std::max(width, height); longer > side) {
    picture.reset(gdk_pixbuf_scale_simple(picture.get(), std::max(1, width * side / longer),
                                          std::max(1, height * side / longer), GDK_INTERP_BILINEAR));
    if (!picture) return {};
  }
  picture = OnWhite(UprightOf(std::move(picture)));
  if (!picture) return {};
  gchar* data = nullptr;
  gsize size = 0;
  if (gdk_pixbuf_save_to_buffer(picture.get(), &data, &size, "jpeg", nullptr, "quality", kJpegQuality,
                                nullptr) == FALSE)
    return {};
  const std::unique_ptr<gchar, decltype(&g_free)> owned(data, &g_free);
  return {data, size};
}

}  // namespace pictures
