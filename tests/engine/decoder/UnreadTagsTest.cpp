#include "engine/shown/UnreadTags.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>

#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
#include "files/Descriptor.hpp"

namespace engine::testing {
namespace {

class ATag : public ::testing::Test {
 protected:
  /// The file as the decoder reads it, in steps of so many bytes.
  std::string shown(const std::string& bytes, std::size_t step = 4096) {
    Write(folder / "file", bytes);
    const files::Descriptor file(::open((folder / "file").c_str(), O_RDONLY | O_CLOEXEC));
    UnreadTags tags(file.get());
    std::string all;
    std::string piece(step, '?');
    while (all.size() <= bytes.size()) {
      const std::int64_t count = tags.read(piece.data(), piece.size(), all.size());
      EXPECT_GE(count, 0);
      if (count <= 0) break;
      all.append(piece, 0, static_cast<std::size_t>(count));
    }
    return all;
  }

  static std::string unread(std::string tag) {
    tag[3] = '\x7F';
    return tag;
  }

  const std::string tag = Id3Tag(4, Frame(4, "TIT2", "\3Song"));
  TempFolder folder;
};

TEST_F(ATag, AtTheFrontIsOfNoKnownVersionAndNothingElseChanges) {
  for (const std::size_t step : {std::size_t{1}, std::size_t{3}, std::size_t{11}, std::size_t{4096}})
    EXPECT_EQ(shown(tag + tag + MpegSilence(), step), unread(tag) + unread(tag) + MpegSilence()) << step;
}

TEST_F(ATag, WithAFooterHoldsTheFooter) {
  std::string footed = tag;
  footed[5] = '\x10';
  std::string longer = unread(tag);
  longer[9] = static_cast<char>(longer[9] + 10);
  const std::string rest = "3DI" + footed.substr(3, 7) + FlacWith(Comments("TITLE=Song"));
  EXPECT_EQ(shown(footed + rest), longer + rest);
}

TEST_F(ATag, IsSoughtBehindItsNameAndWhereADsfSaysSo) {
  for (const std::string before :
       {"RIFF____WAVEid3 ____", "FORM____AIFFID3 ____", "FRM8____DSD ID3 ________"})
    EXPECT_EQ(shown(before + tag + "data"), before + unread(tag) + "data") << before;
  const std::string asf = std::string("\x30\x26\xB2\x75I\0D\0003\0\0\0\1\0\x20\0\0\0", 18);
  EXPECT_EQ(shown(asf + tag), asf + unread(tag));
  const std::string dsf = "DSD " + Little(28, 8) + Little(200, 8) + Little(40, 8) + std::string(12, 'm');
  EXPECT_EQ(shown(dsf + tag), dsf + unread(tag));
}

TEST_F(ATag, IsSoughtEverywhereInAStreamWithoutAForm) {
  EXPECT_EQ(shown("\xFF\xF1junk" + tag + "junk"), "\xFF\xF1junk" + unread(tag) + "junk");
  EXPECT_EQ(shown("junk" + tag), "junk" + unread(tag));
}

TEST_F(ATag, IsSoundWhereNobodyLooksForOne) {
  for (const std::string& before : {FlacWith(Comments("TITLE=Song")), MpegSilence(), std::string("OggS"),
                                    std::string("RIFF____WAVEdata____")}) {
    for (int i = 0; i < 60; i += 7) {
      const std::string file = before + std::string(static_cast<std::size_t>(i), 'x') + tag + "more";
      EXPECT_EQ(shown(file, 16), file);
    }
  }
}

TEST_F(ATag, ThatEndsBeforeItsHeaderDoesIsNone) {
  EXPECT_EQ(shown("ID3\4"), "ID3\4");
  EXPECT_EQ(shown(""), "");
  const std::string lying = std::string("ID3\4\0\0\x7F\x7F\x7F\x7F", 10);
  EXPECT_EQ(shown(lying + tag), unread(lying) + unread(tag));
}

}  // namespace
}  // namespace engine::testing
