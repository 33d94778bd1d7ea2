#include "pictures/Picture.hpp"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <vector>

#include "demo/Cover.hpp"
#include "files/ReadFile.hpp"
#include "files/WriteFile.hpp"
#include "pictures/CoverDesk.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace {

TEST(Pictures, TellsItsSizeAndIsMadeSmallerAndNeverLarger) {
  const std::string png = engine::demo::CoverPng(7, 300);
  EXPECT_TRUE(pictures::CanBeShown(png));
  EXPECT_EQ(pictures::SizeOf(png).width, 300);
  const std::string small = pictures::Thumbnail(png, 100);
  EXPECT_EQ(small.substr(0, 3), "\xFF\xD8\xFF");
  EXPECT_TRUE(pictures::CanBeShown(small));
  EXPECT_EQ(pictures::SizeOf(small).width, 100);
  EXPECT_EQ(pictures::SizeOf(pictures::Thumbnail(png, 1000)).height, 300);
}

TEST(Pictures, ThatIsCutOffOrATextOrADrawingIsNone) {
  const std::string png = engine::demo::CoverPng(7, 300);
  EXPECT_FALSE(pictures::CanBeShown(png.substr(0, png.size() / 2)));
  EXPECT_FALSE(pictures::CanBeShown(""));
  EXPECT_FALSE(pictures::CanBeShown("This is a text under the name of a picture"));
  EXPECT_FALSE(
      pictures::CanBeShown("<svg xmlns=\"http://www.w3.org/2000/svg\"><script>alert(1)</script></svg>"));
  EXPECT_EQ(pictures::Thumbnail("GIF89a and nothing more", 100), "");
}

TEST(Pictures, OfTooManyBytesAreRefused) {
  const std::string png = engine::demo::CoverPng(1, 16);
  EXPECT_TRUE(pictures::CanBeShown(png + "tail"));
  EXPECT_FALSE(pictures::CanBeShown(png + std::string(pictures::kMostBytes, ' ')));
}

/// The first pixel's colours.
std::array<int, 3> CornerOf(const std::string& bytes) {
  GdkPixbufLoader* loader = gdk_pixbuf_loader_new();
  gdk_pixbuf_loader_write(loader, reinterpret_cast<const guchar*>(bytes.data()), bytes.size(), nullptr);
  gdk_pixbuf_loader_close(loader, nullptr);
  std::array<int, 3> colours{};
  if (GdkPixbuf* picture = gdk_pixbuf_loader_get_pixbuf(loader); picture != nullptr) {
    const guchar* pixel = gdk_pixbuf_read_pixels(picture);
    colours = {pixel[0], pixel[1], pixel[2]};
  }
  g_object_unref(loader);
  return colours;
}

/// Forty pixels wide and high, of one colour and how solid it is.
std::string PngOf(guint32 colour) {
  GdkPixbuf* plain = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, 40, 40);
  gdk_pixbuf_fill(plain, colour);
  gchar* data = nullptr;
  gsize size = 0;
  gdk_pixbuf_save_to_buffer(plain, &data, &size, "png", nullptr, nullptr);
  std::string png(data, size);
  g_free(data);
  g_object_unref(plain);
  return png;
}

TEST(Pictures, ThatLetThroughStandOnWhite) {
  constexpr int kPacked = 4;  // a JPEG is not exact
  const auto expect = [](guint32 colour, const std::array<int, 3>& seen) {
    const std::array<int, 3> corner = CornerOf(pictures::Thumbnail(PngOf(colour), 20));
    for (std::size_t i = 0; i < corner.size(); ++i) EXPECT_NEAR(corner[i], seen[i], kPacked) << colour;
  };
  expect(0x00000000, {255, 255, 255});
  expect(0x64C80080, {177, 227, 127});
  expect(0x64C800FF, {100, 200, 0});
}

TEST(Pictures, ThatMoveAreShownByTheirFirstFrame) {
  using namespace std::string_literals;
  const std::string frame = "\x2C\0\0\0\0\x01\0\x01\0\0\x02\x02\x44\x01\0"s;
  std::string gif = "GIF89a\x01\0\x01\0\x80\0\0\xFF\xFF\xFF\0\0\0"s;
  for (int i = 0; i < 1000; ++i) gif += frame;
  gif += ";";
  EXPECT_TRUE(pictures::CanBeShown(gif));
  EXPECT_EQ(pictures::SizeOf(pictures::Thumbnail(gif, 256)).width, 1);
}

TEST(CoverDesk, ReadsNoFileThatIsFarTooLarge) {
  const support::TempFolder folder;
  const std::string path = folder.path().string() + "/cover.jpg";
  std::ofstream(path) << engine::demo::CoverPng(1, 16);
  std::filesystem::resize_file(path, std::uintmax_t{50} << 20U);
  pictures::CoverDesk desk;
  EXPECT_EQ(support::FailureNumberOf([&] { desk.load(path); }), 57);
  desk.download("file://" + path, folder.path().string() + "/copy.jpg");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "copy.jpg"));
}

TEST(CoverDesk, ReadsWritesAndCopiesBelowPathsWithBackslashes) {
  const support::TempFolder folder;
  pictures::CoverDesk desk;
  const std::string below = folder.path().string() + R"(\html\images)";
  desk.makeFolder(below);
  EXPECT_EQ(support::FailureNumberOf([&] { desk.makeFolder(below); }), 75);
  const std::string png = engine::demo::CoverPng(1, 32);
  desk.overwrite(below + R"(\a.jpg)", png + "tail");
  desk.overwrite(below + R"(\a.jpg)", png);
  EXPECT_EQ(files::ReadFile(folder.path().string() + "/html/images/a.jpg").text, png + "tail");
  desk.copy(below + R"(\a.jpg)", below + R"(\b.jpg)");
  EXPECT_EQ(desk.load(below + R"(\b.jpg)").bytes, png + "tail");
  desk.remove(below + R"(\b.jpg)");
  EXPECT_EQ(support::FailureNumberOf([&] { desk.load(below + R"(\b.jpg)"); }), 53);
  EXPECT_EQ(support::FailureNumberOf([&] { desk.remove(below + R"(\b.jpg)"); }), 53);
}

TEST(CoverDesk, WritesForItsOwnerAlone) {
  const support::TempFolder folder;
  pictures::CoverDesk desk;
  const std::string html = folder.path().string() + "/html";
  const mode_t before = ::umask(022);
  desk.makeFolder(html + R"(\images)");
  desk.overwrite(html + R"(\images\a.jpg)", "a picture");
  desk.copy(html + R"(\images\a.jpg)", html + R"(\images\b.jpg)");
  desk.download("file://" + html + "/images/a.jpg", html + R"(\images\c.jpg)");
  ::umask(before);
  const auto forOthers = [](const std::filesystem::directory_entry& entry) {
    return entry.status().permissions() &
           (std::filesystem::perms::group_all | std::filesystem::perms::others_all);
  };
  EXPECT_EQ(forOthers(std::filesystem::directory_entry(html)), std::filesystem::perms::none);
  int found = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(html)) {
    EXPECT_EQ(forOthers(entry), std::filesystem::perms::none) << entry.path();
    ++found;
  }
  EXPECT_EQ(found, 4);
}

TEST(CoverDesk, FetchesWhatLiesInFilesAndNothingElse) {
  const support::TempFolder folder;
  pictures::CoverDesk desk;
  const std::string png = engine::demo::CoverPng(1, 32);
  files::WriteFile(folder.path().string() + "/p.png", png);
  desk.download("file://" + folder.path().string() + "/p.png", folder.path().string() + R"(\c.jpg)");
  EXPECT_EQ(desk.load(folder.path().string() + R"(\c.jpg)").bytes, png);
  desk.download("http://127.0.0.1:9/p.png", folder.path().string() + R"(\d.jpg)");
  EXPECT_EQ(support::FailureNumberOf([&] { desk.load(folder.path().string() + R"(\d.jpg)"); }), 53);
  files::WriteFile(folder.path().string() + "/t.png", "a text");
  EXPECT_EQ(support::FailureNumberOf([&] { desk.load(folder.path().string() + R"(\t.png)"); }), 481);
}

TEST(CoverDesk, LooksAtAPictureThatServesAsBothSizesOnce) {
  const support::TempFolder folder;
  const std::string path = folder.path().string();
  std::vector<std::size_t> looks;
  pictures::CoverDesk desk([&](const std::string& bytes) {
    looks.push_back(bytes.size());
    return bytes != "a text";
  });
  for (const char* name : {"/small.jpg", "/large.jpg"}) files::WriteFile(path + name, "a picture");
  files::WriteFile(path + "/text.jpg", "a text");
  for (const char* name : {"/small.jpg", "/large.jpg"}) EXPECT_EQ(desk.load(path + name).bytes, "a picture");
  EXPECT_EQ(looks.size(), 1U);
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(support::FailureNumberOf([&] { desk.load(path + "/text.jpg"); }), 481) << "and again";
  EXPECT_EQ(desk.load(path + "/small.jpg").bytes, "a picture");
  EXPECT_EQ(looks.size(), 3U);
}

}  // namespace
