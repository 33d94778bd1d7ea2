#include "engine/shown/SampleClaims.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "engine/common/Fixtures.hpp"
#include "engine/common/Mp4Builder.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/shown/UnreadTags.hpp"
#include "files/Descriptor.hpp"

namespace engine::testing {
namespace {

constexpr std::uint32_t kSome = 1'500'000;  // fewer than any file may have, but not twice
constexpr std::uint32_t kVeryMany = 100'000'000;
constexpr std::size_t kPart = std::size_t{256} << 10U;

/// An open file as the decoder reads it.
class Shown {
 public:
  explicit Shown(const std::string& path)
      : file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)),
        tags_(file_.get()),
        claims_(tags_, fs::file_size(path)) {}

  /// A part of it; what is shorter ends with the file.
  std::string part(std::uint64_t offset, std::size_t length) {
    std::string bytes(length, '?');
    const std::int64_t count = claims_.read(bytes.data(), length, offset);
    EXPECT_GE(count, 0);
    bytes.resize(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
    return bytes;
  }

  /// All of it, in such steps.
  std::string all(std::size_t step) {
    std::string bytes;
    while (true) {
      const std::string more = part(bytes.size(), step);
      if (more.empty()) return bytes;
      bytes += more;
    }
  }

 private:
  files::Descriptor file_;
  UnreadTags tags_;
  SampleClaims claims_;
};

class AnMp4 : public ::testing::Test {
 protected:
  std::string shown(const std::string& bytes, std::size_t step = 4096) {
    Write(folder / "file", bytes);
    return Shown(folder / "file").all(step);
  }
  /// What is read of a file of that size that begins so.
  std::string begin(const std::string& bytes, std::uint64_t size) {
    Write(folder / "file", bytes, size);
    Shown file(folder / "file");
    std::string read;
    while (read.size() < bytes.size())
      read += file.part(read.size(), std::min(kPart, bytes.size() - read.size()));
    return read;
  }
  void expectBegin(const std::string& bytes, std::uint64_t size) { EXPECT_TRUE(begin(bytes, size) == bytes); }
  void expectAsItIs(const std::string& bytes) { EXPECT_EQ(shown(bytes), bytes); }

  /// Made by another program.
  std::string made(const std::string& name, const std::string& options, int seconds = 3) {
    std::string path = folder / name;
    const std::string length = std::to_string(seconds);
    const std::string line = "ffmpeg -v error -y -f lavfi -i sine=440:d=" + length +
                             " -f lavfi -i testsrc=s=64x64:r=25:d=" + length + " " + options + " '" + path +
                             "' < /dev/null > /dev/null 2>&1";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
    return path;
  }

  TempFolder folder;
};

/// The bytes, in which boxes of that name are unread from the nth on.
std::string Unread(std::string bytes, const std::string& name, int nth = 1) {
  for (auto at = bytes.find(name); at != std::string::npos; at = bytes.find(name, at + 4)) {
    if (--nth <= 0) bytes.replace(at, 4, "0000");
  }
  return bytes;
}

std::string Content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Track(const std::string& sizes, const std::string& edits = {}) {
  return Mp4Track(1, Times(1, 1024) + Spread(1) + sizes + Chunks(1), edits);
}

TEST_F(AnMp4, ThatIsHonestIsReadAsItIs) {
  const std::vector<std::pair<std::string, std::string>> kinds{
      {"plain.m4a", "-map 0 -c:a aac"},
      {"front.m4a", "-map 0 -c:a aac -movflags faststart"},
      {"fragments.m4a", "-map 0 -c:a aac -movflags frag_keyframe+empty_moov -frag_duration 500000"},
      {"index.mp4", "-map 0 -c:a aac -movflags dash+frag_keyframe+global_sidx -frag_duration 500000"},
      {"lossless.m4a", "-map 0 -c:a alac"},
      {"film.mp4", "-map 0 -map 1 -c:a aac -c:v mpeg4 -bf 2"},
      {"film.mov", "-map 0 -map 1 -c:a pcm_s16le -c:v mpeg4"},
      {"pieces.mp4", "-map 0 -map 1 -c:a aac -c:v mpeg4 -movflags frag_keyframe+empty_moov -g 12"},
      {"late.mp4", "-map 0 -map 1 -c:a aac -c:v mpeg4 -ss 0.5 -output_ts_offset 1"}};
  for (const auto& [name, options] : kinds) {
    const std::string bytes = Content(made(name, options));
    ASSERT_GT(bytes.size(), 2000U) << name;
    for (const std::size_t step : {std::size_t{37}, std::size_t{4096}, std::size_t{1} << 20U})
      EXPECT_EQ(Shown(folder / name).all(step), bytes) << name << " in steps of " << step;
  }
}

TEST_F(AnMp4, OfAWholeBookIsReadAsItIs) {
  const std::string book = Mp4File(Movie(Track(Sizes(64 + 1, 10'800'000))));
  Write(folder / "file", book, std::uint64_t{100} << 20U);
  EXPECT_EQ(Shown(folder / "file").part(0, book.size()), book);
}

TEST_F(AnMp4, OfMoreSamplesThanItCanHoldSaysNoneOfThem) {
  const std::string bomb = Mp4File(Movie(Track(Sizes(400, kVeryMany))));
  for (const std::size_t step : {std::size_t{1}, std::size_t{3}, std::size_t{11}, std::size_t{4096}})
    EXPECT_EQ(shown(bomb, step), Unread(bomb, "stsz")) << step;
}

TEST_F(AnMp4, MayHaveAsManyInAllOfItsTracksAsInOne) {
  const std::string one = Track(Sizes(400, kSome));
  expectAsItIs(Mp4File(Movie(one + Track(Sizes(400, 1000)))));
  const std::string two = Mp4File(Movie(one + one));
  EXPECT_EQ(shown(two), Unread(two, "stsz", 2));
}

TEST_F(AnMp4, IsJudgedOnceHoweverOftenItIsRead) {
  const std::string two = Mp4File(Movie(Track(Sizes(400, kSome)) + Track(Sizes(400, kSome))));
  Write(folder / "file", two);
  Shown file(folder / "file");
  const std::string first = file.all(64);
  EXPECT_EQ(first, Unread(two, "stsz", 2));
  EXPECT_EQ(file.all(4096), first);
  for (std::size_t at = two.size(); at-- > 0;) EXPECT_EQ(file.part(at, 5), first.substr(at, 5)) << at;
}

TEST_F(AnMp4, IsJudgedByItsNamesFromWhereverItIsRead) {
  const std::string bomb = Mp4File(Movie(Track(Sizes(400, kVeryMany))));
  const std::string unread = Unread(bomb, "stsz");
  Write(folder / "file", bomb);
  for (std::size_t at = 0; at < bomb.size(); ++at)
    EXPECT_EQ(Shown(folder / "file").part(at, 40), unread.substr(at, 40)) << at;
}

TEST_F(AnMp4, HasSoundThatNobodyJudges) {
  const std::string claim = Sizes(400, kVeryMany) + SampleRun(kVeryMany) + Box("cmov", "x");
  const std::string movie = Movie(Track(Sizes(400, 10)));
  expectAsItIs(Mp4File(Box("mdat", claim) + movie));
  expectAsItIs(Mp4File(Big(1, 4) + "mdat" + Big(claim.size() + 16, 8) + claim + movie));
  expectAsItIs(Mp4File(movie + Big(0, 4) + "mdat" + claim));
  // What stands between is no sound.
  const std::string between = Mp4File(movie + Box("mdat", "") + Box("free", claim) + Box("mdat", ""));
  EXPECT_EQ(shown(between), Unread(Unread(Unread(between, "stsz", 2), "trun"), "cmov"));
}

TEST_F(AnMp4, IsJudgedEverywhereWhereTheDecoderMayJumpIntoItsSound) {
  const std::string sound = Box("mdat", Sizes(400, kVeryMany));
  const std::string movie = Movie(Track({}));
  for (const std::string& odd :
       {movie + Box("moof", "") + sound, movie + Box("sidx", std::string(40, '\0')) + sound,
        movie + sound + Box("mfra", ""), movie + sound + Big(4, 4) + "junk"}) {
    const std::string file = Mp4File(odd);
    EXPECT_EQ(shown(file), Unread(file, "stsz"));
  }
}

TEST_F(AnMp4, WithoutFragmentsPointsAtNone) {
  const std::string movie =
      Movie(Track(Sizes(400, 10)) + Box("moof", "") + Box("udta", Box("sidx", std::string(40, '\0'))));
  const std::string file = Mp4File(movie + Box("free", Box("mfra", Box("tfra", std::string(16, '\0')))));
  EXPECT_EQ(shown(file), Unread(Unread(Unread(Unread(file, "moof"), "sidx"), "mfra"), "tfra"));
}

TEST_F(AnMp4, IsJudgedBehindTagsAtItsFront) {
  const std::string tag = Id3Tag(4, Frame(4, "TIT2", "\3Song"));
  const std::string bomb = tag + tag + Mp4File(Movie(Track(Sizes(400, kVeryMany))));
  std::string unread = Unread(bomb, "stsz");
  unread[3] = unread[tag.size() + 3] = '\x7F';
  EXPECT_EQ(shown(bomb), unread);
  std::string many;
  for (int i = 0; i < 1001; ++i) many += Id3Tag(4, {});
  EXPECT_EQ(shown(many + bomb).substr(many.size() + 2 * tag.size()), unread.substr(2 * tag.size()));
}

TEST_F(AnMp4, IsOneWhateverItBeginsWith) {
  const std::string bomb = Movie(Track(Sizes(400, kVeryMany)));
  for (const std::string begin : {"OggS", "RIFF", "fLaC"}) {
    const std::string other = begin + bomb.substr(4);
    EXPECT_EQ(shown(other), Unread(other, "stsz")) << begin;
  }
}

TEST_F(AnMp4, IsNoFileOfAnotherForm) {
  const std::string claims = Movie(Track(Sizes(400, kVeryMany))) + Box("cmov", "x");
  for (const std::string& before : {FlacWith(Comments("TITLE=Song")), MpegSilence(),
                                    std::string("RIFF____WAVEdata____"), std::string("OggS")})
    expectAsItIs(before + claims);
}

TEST_F(AnMp4, WithASizeOfEightBytesIsJudgedAlike) {
  const std::string wide = Big(1, 4) + "stsz" + Big(28, 8) + Big(0, 4) + Big(400, 4) + Big(kVeryMany, 4);
  const std::string bomb = Mp4File(Movie(Track(wide)));
  for (const std::size_t step : {std::size_t{1}, std::size_t{4096}})
    EXPECT_EQ(shown(bomb, step), Unread(bomb, "stsz")) << step;
}

TEST_F(AnMp4, OfRunsHasAsManySamplesAsOneWithout) {
  const std::string run = Fragment(SampleRun(kSome / 2));
  const std::string file = Mp4File(Movie(Track({})) + run + run + run);
  EXPECT_EQ(shown(file), Unread(file, "trun", 3));
}

TEST_F(AnMp4, MayRepeatNoMoreThanItMayHold) {
  expectAsItIs(Mp4File(Movie(Track(Sizes(400, 10'000), Edits(30)))));
  const std::string many = Mp4File(Movie(Track(Sizes(400, 10), Edits(33))));
  EXPECT_EQ(shown(many), Unread(many, "elst"));
  const std::string first = Mp4File(Movie(Track(Sizes(400, 100'000), Edits(30))));
  EXPECT_EQ(shown(first), Unread(first, "stsz"));
  const std::string last = Mp4File(Movie(Track(Sizes(400, 100'000)) + Edits(30)));
  EXPECT_EQ(shown(last), Unread(last, "elst"));
}

TEST_F(AnMp4, MayBeginWithSilence) {
  const std::string silence = Big(500, 4) + Big(0xFFFFFFFF, 4) + Big(0x10000, 4);
  const std::string all = Big(5000, 4) + Big(0, 4) + Big(0x10000, 4);
  const auto edits = [](const std::string& each) {
    return Box("edts", FullBox("elst", Big(each.size() / 12, 4) + each));
  };
  expectAsItIs(Mp4File(Movie(Track(Sizes(400, kSome), edits(silence + all)))));
  const std::string twice = Mp4File(Movie(Track(Sizes(400, kSome), edits(all + all))));
  EXPECT_EQ(shown(twice), Unread(twice, "stsz"));
}

TEST_F(AnMp4, IsNeverPackedNorLocked) {
  for (const std::string name : {"cmov", "senc", "saiz", "saio", "pssh"}) {
    const std::string file = Mp4File(Movie(Track(Sizes(400, 10)) + Box(name, "xxxx")));
    EXPECT_EQ(shown(file), Unread(file, name)) << name;
  }
}

TEST_F(AnMp4, OfUnpackedSoundHasANumberForEachPointThatIsToldSmaller) {
  const std::string hour = Mp4File(Movie(Track(Sizes(4, 158'760'000))));
  std::string told = hour;
  told.replace(told.find("stsz") + 12, 4, Big(10'000, 4));
  for (const std::size_t step : {std::size_t{1}, std::size_t{5}, std::size_t{4096}})
    EXPECT_EQ(shown(hour, step), told) << step;
  // Where the number is a part of something else too, nothing is told.
  for (const std::string& near : {"sbgp" + Sizes(4, 158'760'000).substr(4),
                                  Sizes(4, 158'760'000).substr(0, 17) + "stco", Sizes(4, 0x70FFFFFF)})
    EXPECT_EQ(shown(Movie(near)), Unread(Movie(near), "stsz"));
  // What may be the end of a time that stands for silence still is one.
  const std::string odd = Mp4File(Movie(Track(Sizes(4, 0x0A00'01FF))));
  std::string fewer = odd;
  fewer.replace(fewer.find("stsz") + 12, 4, Big(0xFFFF, 4));
  EXPECT_EQ(shown(odd), fewer);
}

TEST_F(AnMp4, OfABookOfSmallSamplesOfOneSizeIsReadAsItIs) {
  // Ten hours of speech.
  const std::string head = Mp4File(Movie(Track(Sizes(32, 1'800'000))));
  const std::string sound = Box("mdat", std::string(std::size_t{32} * 1'800'000, '\0'));
  expectAsItIs(head + sound);
  EXPECT_NE(shown(head), head);  // there is no such sound in it
}

TEST_F(AnMp4, HasNoListsThatAreLongerThanItself) {
  for (const std::string name : {"stss", "stps", "stts", "ctts", "stco", "co64", "stsc", "keys"}) {
    const std::string list = FullBox(name, Big(20'000'000, 4));
    const std::string file = Mp4File(Movie(Box("trak", list)));
    EXPECT_EQ(shown(file), Unread(file, name)) << name;
  }
  const std::string others =
      Mp4File(Movie(Box("trak", FullBox("dref", Big(200, 4) + std::string(2400, '\0')))));
  EXPECT_EQ(shown(others), Unread(others, "dref"));
  const std::string sizes = Mp4File(Movie(Box("trak", Sizes(0, kVeryMany))));
  EXPECT_EQ(shown(sizes), Unread(sizes, "stsz"));
}

TEST_F(AnMp4, HasNoGroupsOfWhichEachSampleWouldBeWrittenOut) {
  for (const std::string name : {"sbgp", "sgpd"}) {
    const std::string groups = Mp4File(Movie(Box("trak", FullBox(name, "sync" + Big(1, 4) + Big(9, 4)))));
    EXPECT_EQ(shown(groups), Unread(groups, name));
    expectAsItIs(Mp4File(Movie(Box("trak", FullBox(name, "roll" + Big(1, 4) + Big(9, 4))))));
  }
}

TEST_F(AnMp4, HasChunksThatHoldNoMoreThanItself) {
  const auto tracks = [](std::uint32_t each) { return Movie(Mp4Track(1, Spread(each) + Chunks(1000))); };
  expectAsItIs(Mp4File(tracks(44'100)));
  const std::string large = Mp4File(tracks(16'000'000));
  EXPECT_EQ(shown(large), Unread(large, "stco"));
  const std::string largest = Mp4File(tracks(2'000'000'000));
  EXPECT_EQ(shown(largest), Unread(largest, "stsc"));
}

/// A film of three hours, whose sound is told in pieces as long as its frames.
TEST_F(AnMp4, OfALongFilmWithEightTracksOfPlainSoundIsReadAsItIs) {
  std::string tracks;
  const std::string lists = Spread(1920) + Chunks(270'000);
  for (std::uint32_t id = 1; id <= 8; ++id) tracks += Mp4Track(id, lists);
  expectBegin(Mp4File(Movie(tracks)), std::uint64_t{16} << 30U);
}

TEST_F(AnMp4, CountsNoChunkTwice) {
  const auto line = [](std::uint32_t first) { return Big(first, 4) + Big(16'000, 4) + Big(1, 4); };
  const auto file = [&](std::uint32_t last) {
    return Mp4File(Movie(Mp4Track(1, FullBox("stsc", Big(2, 4) + line(1) + line(last)) + Chunks(300'000))));
  };
  expectBegin(file(300'000), std::uint64_t{8} << 30U);
  const std::string larger = file(700'000);
  EXPECT_TRUE(begin(larger, std::uint64_t{8} << 30U) == Unread(larger, "stsc"));
}

TEST_F(AnMp4, OfVeryManyTracksThatTellFewOfTheirChunksHasNoMoreThanAnother) {
  std::string tracks;
  for (int i = 0; i < 200; ++i) tracks += Box("trak", Spread(160));
  const std::string some = Mp4File(Movie(tracks + Box("trak", Chunks(9'000))));
  expectAsItIs(some);
  const std::string more = Mp4File(Movie(tracks + Box("trak", Chunks(11'000))));
  EXPECT_EQ(shown(more), Unread(more, "stco"));
}

TEST_F(AnMp4, OfVeryMuchThatIsNotBelievedIsJudgedToItsEnd) {
  std::string tracks;
  for (int i = 0; i < 11'000; ++i) tracks += Sizes(400, kVeryMany);
  const std::string file = Mp4File(Movie(tracks));
  EXPECT_EQ(shown(file), Unread(file, "stsz"));
}

}  // namespace
}  // namespace engine::testing
