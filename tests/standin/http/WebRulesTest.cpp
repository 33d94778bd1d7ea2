#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "standin/http/WebRules.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

TEST(WebRules, OnlyTheServersOwnNamesAreAnswered) {
  const AllowedHosts local(false, {"house.example"});
  for (const char* host :
       {"localhost", "LOCALHOST:8080", "127.0.0.1:8080", "127.1.2.3", "[::1]:80", "House.Example:1"}) {
    EXPECT_TRUE(local.allows(host)) << host;
  }
  for (const char* host :
       {"", "evil.example", "localhost.evil.example", "192.168.1.5", "127.0.0.1.evil.example",
        "localhost:80:90", "[::1", "local host", "localhost:8x", "127.0.0.1@evil"}) {
    EXPECT_FALSE(local.allows(host)) << host;
  }
  const AllowedHosts open(true, {});
  EXPECT_TRUE(open.allows("192.168.1.5:8080"));
  EXPECT_FALSE(open.allows("evil.example"));
}

TEST(WebRules, AnOriginMustBeTheHostItself) {
  for (const bool tls : {false, true}) {
    EXPECT_TRUE(SameOrigin("https://localhost:8080", "localhost:8080", tls));
    EXPECT_FALSE(SameOrigin("https://localhost:8081", "localhost:8080", tls));
    EXPECT_FALSE(SameOrigin("https://evil.example", "localhost:8080", tls));
    EXPECT_FALSE(SameOrigin("null", "localhost:8080", tls));
    EXPECT_FALSE(SameOrigin("", "localhost:8080", tls));
  }
  EXPECT_TRUE(SameOrigin("http://localhost:8080", "localhost:8080", false));
  EXPECT_FALSE(SameOrigin("http://localhost:8080", "localhost:8080", true)) << "it has no pages in the clear";
}

TEST(WebRules, DataIsLoadedByItsOwnPagesByReadersAndByOtherPrograms) {
  EXPECT_TRUE(MayLoadData({}));
  EXPECT_TRUE(MayLoadData({.site = "same-origin", .mode = "cors", .dest = "empty"}));
  EXPECT_TRUE(MayLoadData({.site = "none", .mode = "navigate", .dest = "document"}));
  EXPECT_TRUE(MayLoadData({.site = "cross-site", .mode = "navigate", .dest = "document"}));
  EXPECT_FALSE(MayLoadData({.site = "cross-site", .mode = "no-cors", .dest = "image"}));
  EXPECT_FALSE(MayLoadData({.site = "same-site", .mode = "no-cors", .dest = "image"}));
  EXPECT_FALSE(MayLoadData({.site = "cross-site", .mode = "cors", .dest = "empty"}));
}

TEST(WebRules, APageIsLoadedToBeShownAndForNothingElse) {
  EXPECT_TRUE(MayLoadPage({}));
  EXPECT_TRUE(MayLoadPage({.site = "none", .mode = "navigate", .dest = "document"}));
  EXPECT_TRUE(MayLoadPage({.site = "cross-site", .mode = "navigate", .dest = "document"}));
  EXPECT_FALSE(MayLoadPage({.site = "same-origin", .mode = "no-cors", .dest = "image"}));
  EXPECT_FALSE(MayLoadPage({.site = "cross-site", .mode = "navigate", .dest = "iframe"}));
  EXPECT_FALSE(MayLoadPage({.site = "cross-site", .mode = "no-cors", .dest = "empty"}));
  EXPECT_FALSE(MayLoadPage(
      {.site = "cross-site", .mode = "navigate", .dest = "document", .purpose = "prefetch;prerender"}));
}

TEST(WebRules, ACookieIsFoundByItsWholeName) {
  EXPECT_EQ(CookieValue("a=1; vantorix=abc; b=2", "vantorix"), "abc");
  EXPECT_EQ(CookieValue("xvantorix=abc", "vantorix"), "");
  EXPECT_EQ(CookieValue("vantorix", "vantorix"), "");
}

TEST(WebRules, NoPathLeadsOutOfTheFolder) {
  const support::TempFolder folder;
  const auto root = folder.path() / "html";
  std::filesystem::create_directories(root / "images/Media Player");
  std::ofstream(root / "images/Media Player/x.gif") << "gif";
  std::ofstream(folder.path() / "secret") << "secret";
  std::filesystem::create_symlink(folder.path() / "secret", root / "link");
  std::filesystem::create_directory_symlink(folder.path(), root / "up");
  std::filesystem::create_symlink(root / "images/Media Player/x.gif", root / "inside");
  EXPECT_TRUE(FileBelow(root, "/images/Media Player/x.gif").has_value());
  EXPECT_TRUE(FileBelow(root, "/images\\Media Player\\x.gif").has_value());
  EXPECT_TRUE(FileBelow(root, "/inside").has_value());
  for (const std::string path :
       {"/../secret", "/images/../../secret", "/..\\secret", "/link", "/up/secret", "/", "", "/images",
        "/nothing", "//etc/passwd", "/./images/Media Player/x.gif"}) {
    EXPECT_FALSE(FileBelow(root, path).has_value()) << path;
  }
  EXPECT_FALSE(FileBelow(root, std::string("/inside\0x", 9)).has_value());
}

TEST(AServer, IsReachedAtItsOneAddressOrAtEach) {
  EXPECT_EQ(HostOf("192.168.1.5"), "192.168.1.5");
  EXPECT_EQ(HostOf("fd00::5"), "[fd00::5]");
  for (const char* each : {"0.0.0.0", "::", "0::0"}) EXPECT_TRUE(IsAnyAddress(each)) << each;
  for (const char* one : {"127.0.0.1", "::1", "localhost", "10.0.0.1"})
    EXPECT_FALSE(IsAnyAddress(one)) << one;
}

}  // namespace
}  // namespace standin
