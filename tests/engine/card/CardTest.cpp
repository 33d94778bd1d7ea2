#include <gmock/gmock.h>

#include <fstream>

#include "base/Failure.hpp"
#include "engine/card/CardOpener.hpp"
#include "engine/card/EglCard.hpp"
#include "engine/common/Fixtures.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kLibrary = "libEGL.so.1";
constexpr const char* kNone = "libNobodyHasSuchAnEgl.so.1";

template <class Function>
Function Gl(const GraphicsCard& card, const char* name) {
  return reinterpret_cast<Function>(card.function(name));
}

std::vector<int> PixelAt(const base::PictureFrame& frame, int x, int y) {
  const std::uint8_t* at =
      frame.data() + static_cast<std::size_t>(y) * frame.stride + static_cast<std::size_t>(x) * 4;
  return {at[0], at[1], at[2]};
}

/// Fills the rows from one on with a colour.
void Fill(GraphicsCard& card, base::PictureSize size, int row, float red, float green, float blue) {
  Gl<PFNGLBINDFRAMEBUFFERPROC>(card, "glBindFramebuffer")(GL_FRAMEBUFFER, card.framebuffer(size));
  Gl<decltype(&glEnable)>(card, "glEnable")(GL_SCISSOR_TEST);
  Gl<decltype(&glScissor)>(card, "glScissor")(0, row, size.width, size.height - row);
  Gl<decltype(&glClearColor)>(card, "glClearColor")(red, green, blue, 1);
  Gl<decltype(&glClear)>(card, "glClear")(GL_COLOR_BUFFER_BIT);
}

TEST(Card, GivesBackWhatIsDrawnRowByRowInAnySize) {
  EglCard card(kLibrary, true);
  EXPECT_FALSE(card.name().empty());
  for (const base::PictureSize size : {base::PictureSize{5, 3}, {251, 150}, {64, 2}, {1, 2}}) {
    Fill(card, size, 0, 1, 0, 0);
    Fill(card, size, size.height - 1, 0, 0, 1);
    base::PictureFrame frame(size);
    card.read(frame);
    EXPECT_THAT(PixelAt(frame, 0, 0), ElementsAre(0, 0, 255)) << size.width;
    EXPECT_THAT(PixelAt(frame, size.width - 1, size.height - 2), ElementsAre(0, 0, 255)) << size.width;
    EXPECT_THAT(PixelAt(frame, 0, size.height - 1), ElementsAre(255, 0, 0)) << size.width;
    EXPECT_THAT(PixelAt(frame, size.width - 1, size.height - 1), ElementsAre(255, 0, 0)) << size.width;
  }
}

TEST(Card, RefusesAPictureThatItHasNoRoomForAndDrawsOthersAfterwards) {
  EglCard card(kLibrary, true);
  EXPECT_THROW(card.framebuffer({1 << 24, 1}), base::Failure);
  EXPECT_THROW(card.framebuffer({1, 1 << 24}), base::Failure);
  Fill(card, {4, 4}, 0, 0, 1, 0);
  base::PictureFrame frame({4, 4});
  card.read(frame);
  EXPECT_THAT(PixelAt(frame, 3, 3), ElementsAre(0, 255, 0));
}

TEST(Card, TellsWhenReadingFails) {
  EglCard card(kLibrary, true);
  base::PictureFrame frame({4, 4});
  EXPECT_THROW(card.read(frame), base::Failure) << "there is no framebuffer yet";
}

TEST(Card, IsNoneThatDrawsByTheProcessor) {
  for (const char* name : {"llvmpipe (LLVM 15.0.6, 256 bits)", "softpipe", "Software Rasterizer", "swrast",
                           "Google SwiftShader", "zink (llvmpipe (LLVM 15.0.6, 256 bits))"})
    EXPECT_TRUE(DrawsInSoftware(name)) << name;
  for (const char* name :
       {"Mesa Intel(R) UHD Graphics 620 (KBL GT2)", "AMD Radeon RX 580 (polaris10, LLVM 15.0.6)", "V3D 4.2",
        "NVIDIA GeForce GTX 1060/PCIe/SSE2", "virgl", ""})
    EXPECT_FALSE(DrawsInSoftware(name)) << name;
  try {
    const EglContext context(kLibrary, false);
    EXPECT_FALSE(DrawsInSoftware(context.renderer())) << "this machine has a card";
  } catch (const base::Failure& failure) {
    EXPECT_THAT(failure.description(), HasSubstr("there is no graphics card to be used, only"));
  }
}

TEST(Card, IsOnlyLookedForWhereItsFileIs) {
  const TempFolder folder;
  EXPECT_FALSE(CardOpener(Graphics::kAuto, {.nodes = folder / "missing"}));
  std::ofstream(folder / "card0") << "";
  EXPECT_FALSE(CardOpener(Graphics::kAuto, {.nodes = folder.path()}));
  EXPECT_TRUE(CardOpener(Graphics::kAny, {.nodes = folder.path()}));
  std::ofstream(folder / "renderD128") << "";
  EXPECT_TRUE(CardOpener(Graphics::kAuto, {.nodes = folder.path()}));
  EXPECT_FALSE(CardOpener(Graphics::kNone, {.nodes = folder.path()}));
}

TEST(Card, ThatCantBeOpenedIsToldOnceAndNotTriedAgain) {
  const OpenCard open = CardOpener(Graphics::kAny, {.library = kNone});
  try {
    open();
    FAIL();
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kCannotCreate);
    EXPECT_THAT(failure.description(), HasSubstr(kNone));
  }
  EXPECT_EQ(open(), nullptr);
}

TEST(Card, IsOpenedForOneAfterTheOther) {
  const OpenCard open = CardOpener(Graphics::kAny);
  EXPECT_NE(open(), nullptr);
  EXPECT_NE(open(), nullptr);
}

}  // namespace
}  // namespace engine::testing
