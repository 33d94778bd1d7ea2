#include "engine/tags/MediaFile.hpp"

#include <gmock/gmock.h>

#include <cstdlib>

#include "base/Failure.hpp"
#include "demo/Cover.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"

namespace engine::testing {
namespace {

class FilesOfAllKinds : public ::testing::Test {
 protected:
  /// A file of two and a half seconds with tags, made by another program.
  std::string made(const std::string& name, bool film, const std::string& options = {}) {
    std::string path = folder / name;
    std::string line = "ffmpeg -v error -f lavfi -i sine=440:d=2.5 ";
    if (film) line += "-f lavfi -i testsrc=s=32x32:d=2.5:r=10 ";
    line +=
        "-metadata title=Möving -metadata artist=Ann -metadata album_artist=Various -metadata album=Blue "
        "-metadata genre=Jazz -metadata date=1999-03-01 -metadata track=3/12 -metadata disc=2/2 ";
    line += options + " -y '" + path + "' < /dev/null > /dev/null 2>&1";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
    return path;
  }

  TempFolder folder;
};

void ExpectTheSong(const tags::MediaFile& file, const std::string& name, std::uint32_t milliseconds = 2500) {
  EXPECT_TRUE(file.music) << name;
  EXPECT_FALSE(file.cut) << name;
  EXPECT_EQ(file.tags.title, "Möving") << name;
  EXPECT_EQ(file.tags.artist, "Ann") << name;
  EXPECT_EQ(file.tags.album, "Blue") << name;
  EXPECT_EQ(file.tags.genre, "Jazz") << name;
  EXPECT_EQ(file.tags.year, 1999) << name;
  EXPECT_NEAR(file.tags.milliseconds, milliseconds, 110) << name;
}

TEST_F(FilesOfAllKinds, TellHowLoudTheyAre) {
  const std::string options =
      "-metadata 'REPLAYGAIN_TRACK_GAIN=-6.54 dB' -metadata REPLAYGAIN_TRACK_PEAK=0.98765 "
      "-metadata 'replaygain_album_gain=+1.5 dB' -metadata REPLAYGAIN_ALBUM_PEAK=1.2 ";
  for (const std::string name : {"l.mp3", "l.flac", "l.ogg", "l.opus", "l.mka", "l.wv"}) {
    const Loudness loudness = tags::ReadMediaFile(made(name, false, options)).tags.loudness;
    EXPECT_EQ(loudness, (Loudness{-654, 150, 9877, 12000})) << name;
  }
}

TEST_F(FilesOfAllKinds, TellOpussOwnLevels) {
  const std::string path =
      made("r.opus", false, "-metadata R128_TRACK_GAIN=-2560 -metadata R128_ALBUM_GAIN=256 ");
  EXPECT_EQ(tags::ReadMediaFile(path).tags.loudness, (Loudness{-500, 600, 0, 0}));
}

TEST_F(FilesOfAllKinds, TellNoLoudnessThatIsNone) {
  for (const std::string value : {"nan", "inf", "loud", "1000000 dB", "-99 dB", "--3"}) {
    const std::string path =
        made("n.flac", false,
             "-metadata 'REPLAYGAIN_TRACK_GAIN=" + value + "' -metadata REPLAYGAIN_TRACK_PEAK=-1 ");
    const Loudness loudness = tags::ReadMediaFile(path).tags.loudness;
    EXPECT_EQ(loudness, Loudness()) << value;
  }
}

TEST_F(FilesOfAllKinds, TellTheirTags) {
  for (const std::string name :
       {"a.mp3", "a.flac", "a.ogg", "a.oga", "a.opus", "a.m4a", "a.mka", "a.wma", "a.wv", "a.tta"}) {
    const tags::MediaFile file = tags::ReadMediaFile(made(name, false));
    ExpectTheSong(file, name);
    EXPECT_EQ(file.tags.kind, MediaKind::kAudio) << name;
    EXPECT_EQ(file.tags.albumArtist, "Various") << name;
    EXPECT_EQ(file.tags.track, 3) << name;
    EXPECT_EQ(file.tags.disc, 2) << name;
  }
  ExpectTheSong(tags::ReadMediaFile(made("a.wav", false)), "a.wav");
}

TEST_F(FilesOfAllKinds, TellTheirTagsInFilmsToo) {
  for (const std::string name : {"v.mp4", "v.m4v", "v.mov", "v.mkv", "v.webm", "v.avi", "v.wmv"}) {
    const tags::MediaFile file = tags::ReadMediaFile(made(name, true));
    ExpectTheSong(file, name);
    EXPECT_EQ(file.tags.kind, MediaKind::kVideo) << name;
  }
}

TEST_F(FilesOfAllKinds, TellTheirTagsWhereverTheyStandAndHoweverTheyAreWritten) {
  ExpectTheSong(tags::ReadMediaFile(made("3.mp3", false, "-id3v2_version 3")), "version 3");
  ExpectTheSong(tags::ReadMediaFile(made("c.mp3", false, "-b:a 64k -write_xing 0")), "without notes");
  ExpectTheSong(tags::ReadMediaFile(made("f.mp4", true, "-movflags faststart")), "tags in front");
  ExpectTheSong(tags::ReadMediaFile(made("i.aiff", false, "-write_id3v2 1")), "aiff");
}

TEST_F(FilesOfAllKinds, WithoutMusicAreNone) {
  for (const char* ending :
       {"mp3", "flac", "ogg", "opus", "m4a", "wav", "aiff", "wma", "ape", "mpc", "wv", "tta", "dsf", "mka"}) {
    Write(folder / "x." + ending,
          "this is no music at all, whatever its name says, and it goes on for a while");
    EXPECT_FALSE(tags::ReadMediaFile(folder / "x." + ending).music) << ending;
    Write(folder / "x." + ending, "");
    EXPECT_FALSE(tags::ReadMediaFile(folder / "x." + ending).music) << ending;
  }
}

TEST_F(FilesOfAllKinds, AreOpenedOnlyWhenTheyAreFiles) {
  const auto numberOf = [](const std::string& path) {
    try {
      tags::ReadMediaFile(path);
    } catch (const base::Failure& failure) {
      return failure.number();
    }
    return 0;
  };
  fs::create_directory(folder / "folder.mp3");
  ASSERT_EQ(::mkfifo((folder / "pipe.mp3").c_str(), 0600), 0);
  EXPECT_EQ(numberOf(folder / "none.mp3"), base::number::kFileNotFound);
  EXPECT_EQ(numberOf(folder / "folder.mp3"), base::number::kInvalidArgument);
  EXPECT_EQ(numberOf(folder / "pipe.mp3"), base::number::kInvalidArgument);
}

TEST_F(FilesOfAllKinds, KeepTheirPictures) {
  const std::string png = demo::CoverPng(4, 40);
  TrackTags tags;
  tags.title = "Song";
  for (const std::string name : {"p.flac", "p.ogg", "p.wav"}) {
    const std::string path = made(name, false);
    demo::WriteTags(path, tags, png);
    EXPECT_TRUE(tags::ReadPicture(path) == png) << name;
    EXPECT_EQ(tags::ReadMediaFile(path).tags.title, "Song") << name;
  }
  const std::string back = Frame(3, "APIC", std::string("\0image/png\0\4back\0", 17) + "back");
  const std::string front = std::string("\1image/png\0\3\xFF\xFE\0\0", 16) + png;
  Write(folder / "p.mp3", Id3Tag(3, back + Frame(3, "APIC", front)) + MpegSilence());
  EXPECT_TRUE(tags::ReadPicture(folder / "p.mp3") == png);
  Write(folder / "p.mp3", Id3Tag(4, back + PackedFrame(4, "APIC", front)) + MpegSilence());
  EXPECT_TRUE(tags::ReadPicture(folder / "p.mp3") == png);
  Write(folder / "p.mp3", Id3Tag(3, back) + MpegSilence());
  EXPECT_EQ(tags::ReadPicture(folder / "p.mp3"), "back");
  Write(folder / "p.m4a", Mp4With("covr", png));
  EXPECT_TRUE(tags::ReadPicture(folder / "p.m4a") == png);
  EXPECT_EQ(tags::ReadPicture(made("none.flac", false)), "");
}

class ASongByHand : public ::testing::Test {
 protected:
  tags::MediaFile read(const std::string& bytes, const std::string& name = "s.mp3") {
    Write(folder / name, bytes);
    return tags::ReadMediaFile(folder / name);
  }
  tags::MediaFile withFrames(int version, const std::string& frames) {
    return read(Id3Tag(version, frames) + MpegSilence());
  }

  TempFolder folder;
};

TEST_F(ASongByHand, IsReadInEachOfTheFourWaysOfWriting) {
  const auto title = [&](const std::string& content) {
    return withFrames(4, Frame(4, "TIT2", content)).tags.title;
  };
  EXPECT_EQ(title(std::string("\0caf\xE9", 5)), "café");
  EXPECT_EQ(title(std::string("\1\xFF\xFE"
                              "c\0\xE9\0\0\0x\0",
                              11)),
            "cé");
  EXPECT_EQ(title(std::string("\1\xFE\xFF\0c\0\xE9", 7)), "cé");
  EXPECT_EQ(title(std::string("\2\0c\xD8\x3D\xDE\x00", 7)), "c😀");
  EXPECT_EQ(title("\3 Señor \xFF "), "Señor \xEF\xBF\xBD");
  EXPECT_EQ(title(std::string("\2\xD8\x3D\0c", 5)),
            "\xEF\xBF\xBD"
            "c");
}

TEST_F(ASongByHand, NamesItsGenreByNumberOrByName) {
  const auto genre = [&](const std::string& text) {
    return withFrames(3, Frame(3, "TCON", std::string(1, '\0') + text)).tags.genre;
  };
  EXPECT_EQ(genre("(8)"), "Jazz");
  EXPECT_EQ(genre("8"), "Jazz");
  EXPECT_EQ(genre("(17)Rock"), "Rock");
  EXPECT_EQ(genre("Hot (8) Jazz"), "Hot (8) Jazz");
  EXPECT_EQ(genre("(255)Own"), "Own");
  EXPECT_EQ(genre("(RX)"), "Remix");
  EXPECT_EQ(genre("2000s"), "2000s");
}

TEST_F(ASongByHand, IsFoundBehindStuffingPackingAndExtraHeads) {
  const std::string content = "\3" + std::string("Song");
  EXPECT_EQ(withFrames(3, PackedFrame(3, "TIT2", content)).tags.title, "Song");
  EXPECT_EQ(withFrames(4, PackedFrame(4, "TIT2", content)).tags.title, "Song");
  EXPECT_EQ(withFrames(4, Frame(4, "TIT2", "\3S\xFF" + std::string(1, '\0') + "ong", 0x0002)).tags.title,
            "S\xEF\xBF\xBDong");
  EXPECT_EQ(withFrames(4, Frame(4, "TIT2", content, 0x0004)).tags.title, "");  // locked with a key
  std::string stuffed = Id3Tag(3, Frame(3, "TIT2", std::string("\1\xFF\xFE", 3) + std::string("S\0", 2)));
  stuffed[5] = '\x80';
  EXPECT_EQ(read(stuffed + MpegSilence()).tags.title, "S");
  std::string extended = Id3Tag(3, Big(6, 4) + std::string(6, '\0') + Frame(3, "TIT2", content));
  extended[5] = '\x40';
  EXPECT_EQ(read(extended + MpegSilence()).tags.title, "Song");
}

TEST_F(ASongByHand, CarriesItsTagsBehindTheMusicToo) {
  std::string old = "TAG" + std::string("Old") + std::string(27, '\0') + std::string(30, ' ') +
                    std::string(30, '\0') + "1987" + std::string(29, '\0') + "\x05\x08";
  const std::string item = Little(3, 4) + Little(0, 4) + "Artist" + Big(0, 1) + "Ann";
  const std::string ape = item + "APETAGEX" + Little(2000, 4) + Little(item.size() + 32, 4) + Little(1, 4) +
                          Little(0, 4) + Little(0, 8);
  const TrackTags both = read(MpegSilence() + ape + old).tags;
  EXPECT_EQ(both.artist, "Ann");
  EXPECT_EQ(both.title, "");  // APE's counts, and the old one not at all
  const TrackTags one = read(MpegSilence() + old).tags;
  EXPECT_EQ(one.title, "Old");
  EXPECT_EQ(one.genre, "Jazz");
  EXPECT_EQ(one.year, 1987);
  EXPECT_EQ(one.track, 5);
}

}  // namespace
}  // namespace engine::testing
