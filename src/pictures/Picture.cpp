#include "pictures/Picture.hpp"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string_view>

namespace pictures {
namespace {

constexpr const char* kJpegQuality = "88";

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
using Loader = std::unique_ptr<GdkPixbufLoader, Unref>;
using Pixbuf = std::unique_ptr<GdkPixbuf, Unref>;

/// The loader's name for the kind that the first bytes tell, null for any other. What else the machine could
/// decode (drawings that run code, formats of decades ago) is not let near.
const char* KindOf(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xD8\xFF")) return "jpeg";
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return "png";
  if (bytes.starts_with("GIF8")) return "gif";
  if (bytes.starts_with("BM")) return "bmp";
  if (bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP")) return "webp";
  return nullptr;
}

/// Whether the picture's end is there. Loaders show what there is of one that is cut off.
bool IsWhole(std::string_view kind, std::string_view bytes) {
  if (kind == "jpeg") return bytes.rfind("\xFF\xD9") != std::string_view::npos;
  if (kind == "png") return bytes.rfind("IEND") != std::string_view::npos;
  if (kind == "gif") return bytes.rfind(';') != std::string_view::npos;
  if (bytes.size() < 8) return false;
  const auto byte = [&](std::size_t at) { return std::size_t{static_cast<unsigned char>(bytes[at])}; };
  const std::size_t at = kind == "bmp" ? 2 : 4;
  const std::size_t claimed = byte(at) | byte(at + 1) << 8U | byte(at + 2) << 16U | byte(at + 3) << 24U;
  return bytes.size() >= (kind == "bmp" ? claimed : claimed + 8);
}

/// How a picture is to be read.
struct Wish {
  Size claimed{};
  int side = 0;           ///< the longer side; 0 leaves the picture as it is
  bool headOnly = false;  ///< nothing is unpacked
  bool refused = false;
};

void OnSize(GdkPixbufLoader* loader, int width, int height, gpointer data) {
  auto& wish = *static_cast<Wish*>(data);
  wish.claimed = {width, height};
  wish.refused = wish.headOnly || width <= 0 || height <= 0 || width > kMostPixels / height;
  if (wish.refused) {
    // A size of nothing keeps the loader from unpacking.
    gdk_pixbuf_loader_set_size(loader, 0, 0);
    return;
  }
  const int longer = std::max(width, height);
  if (wish.side <= 0 || longer <= wish.side) return;
  const auto scaled = [&](int length) {
    return std::max(1, static_cast<int>(std::lround(static_cast<double>(length) * wish.side / longer)));
  };
  gdk_pixbuf_loader_set_size(loader, scaled(width), scaled(height));
}

/// The decoded picture, null for what can't be decoded to its end.
Pixbuf Decoded(const std::string& bytes, Wish& wish) {
  constexpr std::size_t kPiece = std::size_t{64} << 10U;
  const char* kind = KindOf(bytes);
  if (kind == nullptr || bytes.size() > kMostBytes) return nullptr;
  const Loader loader(gdk_pixbuf_loader_new_with_type(kind, nullptr));
  if (!loader) return nullptr;
  g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(&OnSize), &wish);
  bool good = true;
  for (std::size_t at = 0; good && !wish.refused && at < bytes.size(); at += kPiece) {
    good = gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(bytes.data() + at),
                                   std::min(kPiece, bytes.size() - at), nullptr) != FALSE;
  }
  // Must be closed in any case.
  good = gdk_pixbuf_loader_close(loader.get(), nullptr) != FALSE && good && IsWhole(kind, bytes);
  GdkPixbuf* picture = good && !wish.refused ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
  if (picture == nullptr) return nullptr;
  return Pixbuf(GDK_PIXBUF(g_object_ref(picture)));
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

Size SizeOf(const std::string& bytes) {
  Wish wish;
  wish.headOnly = true;
  static_cast<void>(Decoded(bytes, wish));
  return wish.claimed;
}

bool CanBeShown(const std::string& bytes) {
  Wish wish;
  return Decoded(bytes, wish) != nullptr;
}

std::string Thumbnail(const std::string& bytes, int side) {
  Wish wish;
  wish.side = side;
  Pixbuf picture = Decoded(bytes, wish);
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
