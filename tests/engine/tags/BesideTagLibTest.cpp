// Our readers of tags beside a library that many players read theirs with, over files as other programs write
// them: what both know, both tell alike. Where they differ on purpose a test says so, and why.
#include <gmock/gmock.h>
#include <taglib/apetag.h>
#include <taglib/fileref.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/tpropertymap.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <set>
#include <type_traits>

#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/tags/MediaFile.hpp"
#include "support/faults/InChild.hpp"

namespace engine::testing {
namespace {

using TagLib::PropertyMap;

std::string Utf8(const TagLib::String& text) { return text.stripWhiteSpace().to8Bit(true); }

/// The first value of a property.
std::string First(const PropertyMap& properties, const char* key) {
  const auto found = properties.find(key);
  return found == properties.end() || found->second.isEmpty() ? "" : Utf8(found->second.front());
}

std::uint16_t Number(const std::string& text) { return static_cast<std::uint16_t>(std::atoi(text.c_str())); }

/// What the library tells of a file.
TrackTags Theirs(const std::string& path) {
  TrackTags tags;
  const TagLib::FileRef file(path.c_str());
  if (file.isNull()) return tags;
  const PropertyMap properties = file.file()->properties();
  // Of several tags in a file, properties are those of one; a text that it lacks may stand in another.
  const auto text = [&](const char* key, const TagLib::String& any) {
    const std::string first = First(properties, key);
    return first.empty() ? Utf8(any) : first;
  };
  const TagLib::Tag& tag = *file.tag();
  tags.title = text("TITLE", tag.title());
  tags.artist = text("ARTIST", tag.artist());
  tags.album = text("ALBUM", tag.album());
  tags.genre = text("GENRE", tag.genre());
  tags.albumArtist = First(properties, "ALBUMARTIST");
  tags.disc = Number(First(properties, "DISCNUMBER"));
  tags.year = static_cast<std::uint16_t>(tag.year());
  tags.track = static_cast<std::uint16_t>(tag.track());
  if (file.audioProperties() != nullptr)
    tags.milliseconds = static_cast<std::uint32_t>(file.audioProperties()->lengthInMilliseconds());
  return tags;
}

class OurReaders : public ::testing::Test {
 protected:
  std::string made(const std::string& name, const std::string& options, bool film = false) {
    std::string path = folder / name;
    std::string line = "ffmpeg -v error -f lavfi -i sine=440:d=2.5 ";
    if (film) line += "-f lavfi -i testsrc=s=32x32:d=2.5:r=10 ";
    line += options + " -y '" + path + "' < /dev/null > /dev/null 2>&1";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
    return path;
  }
  /// `more` names the fields of which the library finds nothing where we do; `rounding` is of the length, in
  /// milliseconds.
  static void agree(const std::string& path, const std::set<std::string>& more = {},
                    std::uint32_t rounding = 2) {
    SCOPED_TRACE(path);
    const TrackTags ours = tags::ReadMediaFile(path).tags;
    const TrackTags theirs = Theirs(path);
    const auto same = [&](const char* field, const auto& our, const auto& their) {
      const std::remove_cvref_t<decltype(their)> none{};
      if (their != none || !more.contains(field)) {
        EXPECT_EQ(our, their) << field;
      }
    };
    same("title", ours.title, theirs.title);
    same("artist", ours.artist, theirs.artist);
    same("album", ours.album, theirs.album);
    same("albumArtist", ours.albumArtist, theirs.albumArtist);
    same("genre", ours.genre, theirs.genre);
    same("track", ours.track, theirs.track);
    same("disc", ours.disc, theirs.disc);
    same("year", ours.year, theirs.year);
    if (theirs.milliseconds != 0 || !more.contains("length")) {
      EXPECT_NEAR(ours.milliseconds, theirs.milliseconds, rounding);
    }
  }
  /// A song without any tags.
  std::string bare(const std::string& name) {
    return made(name, "-map_metadata -1 -id3v2_version 0 -write_id3v1 0");
  }
  static PropertyMap properties(const std::vector<std::pair<const char*, std::string>>& pairs) {
    PropertyMap map;
    for (const auto& [key, value] : pairs) map.insert(key, TagLib::String(value, TagLib::String::UTF8));
    return map;
  }

  TempFolder folder;
};

const std::vector<std::string> kTagged{
    "-metadata title=Möving -metadata artist=Ann -metadata album_artist=Various -metadata album=Blue "
    "-metadata genre=Jazz -metadata date=1999-03-01 -metadata track=3/12 -metadata disc=2/2",
    "-metadata title='日本の歌 😀' -metadata artist='  Señor  ' -metadata album='A/B; C' -metadata "
    "genre='Drum & Bass' "
    "-metadata date=2021 -metadata track=7",
    "-metadata title='x' -metadata disc=11 -metadata track=099",
    "-metadata album='only the album' -metadata date='May 1983'", "-map_metadata -1"};

struct Format {
  const char* name;
  const char* options;
  std::set<std::string> more{};
  std::uint32_t rounding = 2;
  bool film = false;
};

// It counts the silence that an encoder of AAC puts in front, which nobody hears.
constexpr std::uint32_t kSilenceInFront = 24;
// It takes a whole date for no number in these.
const std::set<std::string> kNoDates{"year"};
// It asks for other names of these fields than the usual ones.
const std::set<std::string> kOtherNames{"year", "track"};
const std::set<std::string> kOtherNamesOfApe{"year", "albumArtist"};
// It takes the file for FLAC by its name.
const std::set<std::string> kNoLength{"length"};
// It doesn't look for APE's tag in these.
const std::set<std::string> kNoTag{"title", "artist", "album", "albumArtist",
                                   "genre", "track",  "disc",  "year"};

void PrintTo(const Format& format, std::ostream* out) { *out << format.name << " " << format.options; }

class OurReadersOf : public OurReaders, public ::testing::WithParamInterface<Format> {};

TEST_P(OurReadersOf, FilesOfOtherProgramsTellWhatTheLibraryTells) {
  for (const std::string& tagged : kTagged) {
    SCOPED_TRACE(tagged);
    const Format& format = GetParam();
    agree(made(format.name, tagged + " " + format.options, format.film), format.more, format.rounding);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, OurReadersOf,
    ::testing::Values(
        Format{"a.mp3", "-id3v2_version 4"}, Format{"a.mp3", "-id3v2_version 3"},
        Format{"a.mp3", "-id3v2_version 3 -write_id3v1 1"},
        Format{"a.mp3", "-id3v2_version 0 -write_id3v1 1"}, Format{"a.mp3", "-b:a 64k -write_xing 0"},
        Format{"a.mp3", "-q:a 4 -ac 2"}, Format{"a.mp3", "-ar 22050"}, Format{"a.flac", ""},
        Format{"a.ogg", ""}, Format{"a.oga", "", kNoLength}, Format{"a.opus", ""},
        Format{"a.m4a", "", {}, kSilenceInFront}, Format{"a.m4a", "-c:a alac"},
        Format{"a.m4a", "-movflags faststart", {}, kSilenceInFront}, Format{"a.wav", "", kOtherNames},
        Format{"a.wav", "-c:a pcm_s24le -ar 48000 -ac 2", kOtherNames}, Format{"a.aiff", "-write_id3v2 1"},
        Format{"a.wma", "", kNoDates}, Format{"a.wv", "", kOtherNamesOfApe}, Format{"a.tta", "", kNoTag},
        Format{"a.mp4", "", {}, kSilenceInFront, true}, Format{"a.m4v", "", {}, kSilenceInFront, true},
        Format{"a.wmv", "", kNoDates, 2, true}));

TEST_F(OurReaders, AgreeOnEachWayOfWritingText) {
  using TagLib::String;
  const std::string song = bare("song.mp3");
  for (const auto version : {TagLib::ID3v2::v3, TagLib::ID3v2::v4}) {
    for (const auto form : {String::Latin1, String::UTF16, String::UTF16BE, String::UTF8}) {
      for (const std::string& text : {std::string("Plain"), std::string("Señor"), std::string("日本 😀")}) {
        SCOPED_TRACE("version " + std::to_string(version) + ", form " + std::to_string(form) + ", " + text);
        const std::string path = folder / "written.mp3";
        fs::copy_file(song, path, fs::copy_options::overwrite_existing);
        TagLib::ID3v2::FrameFactory::instance()->setDefaultTextEncoding(form);
        {
          TagLib::MPEG::File file(path.c_str());
          file.ID3v2Tag(true)->setProperties(properties({{"TITLE", text},
                                                         {"ARTIST", text + " A"},
                                                         {"ALBUM", text + " B"},
                                                         {"ALBUMARTIST", text + " C"},
                                                         {"GENRE", "Jazz"},
                                                         {"DATE", "1999-03-01"},
                                                         {"TRACKNUMBER", "3/12"},
                                                         {"DISCNUMBER", "2/2"}}));
          ASSERT_TRUE(file.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripOthers, version));
        }
        agree(path);
        EXPECT_EQ(tags::ReadMediaFile(path).tags.albumArtist, text + " C");
      }
    }
  }
  TagLib::ID3v2::FrameFactory::instance()->setDefaultTextEncoding(String::UTF8);
}

TEST_F(OurReaders, AgreeOnTheOldestTags) {
  const auto version2 = [](const std::string& frames) {
    return std::string("ID3\2\0\0", 6) + Big(frames.size() / 128, 3) + Big(frames.size() % 128, 1) + frames;
  };
  const auto frame = [](const char* id, const std::string& content) {
    return id + Big(content.size(), 3) + content;
  };
  ASSERT_EQ(version2("").size(), 10U);
  const std::string latin(1, '\0');
  const std::string path = folder / "2.mp3";
  Write(path,
        version2(frame("TT2", latin + "Song") + frame("TP1", latin + "Se\xF1or") +
                 frame("TP2", std::string("\1\xFF\xFEV\0\xE9\0", 7)) + frame("TAL", latin + "Blue") +
                 frame("TCO", latin + "(17)") + frame("TYE", latin + "1987") + frame("TRK", latin + "5/9")) +
            MpegSilence());
  agree(path);
  EXPECT_EQ(tags::ReadMediaFile(path).tags.genre, "Rock");
  EXPECT_EQ(tags::ReadMediaFile(path).tags.albumArtist, "Vé");
}

TEST_F(OurReaders, AgreeOnTagsBehindTheMusicAndOnSeveralInOneFile) {
  const std::string song = bare("song.mp3");
  const std::string path = folder / "written.mp3";
  using TagLib::MPEG::File;
  for (int kinds = 1; kinds < 8; ++kinds) {
    SCOPED_TRACE(kinds);
    fs::copy_file(song, path, fs::copy_options::overwrite_existing);
    {
      File file(path.c_str());
      if ((kinds & File::ID3v2) != 0) {
        file.ID3v2Tag(true)->setProperties(properties({{"TITLE", "New"},
                                                       {"ARTIST", "Ann"},
                                                       {"TRACKNUMBER", "2"},
                                                       {"DATE", "2001"},
                                                       {"ALBUM", "Blue"},
                                                       {"GENRE", "Rock"}}));
      }
      if ((kinds & File::APE) != 0) {
        file.APETag(true)->setProperties(properties({{"TITLE", "Ape"},
                                                     {"ARTIST", "Bo"},
                                                     {"ALBUM", "Béla"},
                                                     {"TRACKNUMBER", "4/5"},
                                                     {"DATE", "2002"},
                                                     {"GENRE", "Jazz"}}));
      }
      if ((kinds & File::ID3v1) != 0) {
        TagLib::ID3v1::Tag& old = *file.ID3v1Tag(true);
        old.setTitle("Old");
        old.setArtist(TagLib::String("Se\xC3\xB1or", TagLib::String::UTF8));
        old.setAlbum("A");
        old.setTrack(6);
        old.setYear(1987);
        old.setGenre("Blues");
      }
      ASSERT_TRUE(file.save(kinds, File::StripOthers, TagLib::ID3v2::v4, File::DoNotDuplicate));
    }
    agree(path);
  }
}

// "(RX)" and "(CR)" we spell out, and the library doesn't.
TEST_F(OurReaders, AgreeOnGenresByNumberAndByName) {
  for (const char* text : {"(8)", "8", "(17)Rock", "Hot (8) Jazz", "2000s", "Jazz", "191", "(147)"}) {
    for (const int version : {3, 4}) {
      SCOPED_TRACE(std::string(text) + " in version " + std::to_string(version));
      const std::string path = folder / "genre.mp3";
      Write(path, Id3Tag(version, Frame(version, "TCON", std::string(1, '\0') + text)) + MpegSilence());
      agree(path);
    }
  }
}

TEST_F(OurReaders, TakeTheFirstOfSeveralValues) {
  const std::string path = folder / "several.mp3";
  const auto several = [](const char* id, const std::string& first, const std::string& second) {
    return Frame(4, id, "\3" + first + '\0' + second);
  };
  Write(path,
        Id3Tag(4, several("TIT2", "One", "Two") + several("TPE1", "Ann", "Bo") + several("TCON", "8", "17") +
                      several("TRCK", "3", "4") + several("TDRC", "1999", "2000")) +
            MpegSilence());
  agree(path);
  EXPECT_EQ(tags::ReadMediaFile(path).tags.artist, "Ann");
}

/// What a file says in its name, whatever of it has been changed, is read; whether the library survives it or
/// not.
TEST_F(OurReaders, SurviveWhatTheLibrarySurvivesAndWhatItDoesNot) {
  std::mt19937 random(8);
  const auto below = [&](std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
  };
  int survived = 0;
  int variants = 0;
  for (const char* name :
       {"a.mp3", "a.flac", "a.ogg", "a.opus", "a.m4a", "a.wav", "a.aiff", "a.wma", "a.wv"}) {
    const std::string whole = made(name, kTagged[0]);
    std::ifstream in(whole, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    const std::string path = folder / (std::string("changed") + name);
    for (int round = 0; round < 20; ++round, ++variants) {
      std::string changed = bytes;
      for (std::size_t flips = 1 + below(20); flips-- > 0;)
        changed[below(std::min<std::size_t>(changed.size(), 600))] ^= static_cast<char>(1U << below(8));
      Write(path, changed);
      EXPECT_LE(tags::ReadMediaFile(path).tags.title.size(), 4096U);
      survived += support::InChild([&] {
        ::alarm(60);
        Theirs(path);
        return true;
      })
                      ? 1
                      : 0;
    }
  }
  RecordProperty("survived_by_the_library", survived);
  EXPECT_GT(survived, variants / 2);
}

}  // namespace
}  // namespace engine::testing
