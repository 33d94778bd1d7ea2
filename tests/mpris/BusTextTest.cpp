#include "mpris/session/BusText.hpp"

#include <gtest/gtest.h>

using mpris::AddressOf;
using mpris::BusText;

TEST(BusText, LeavesOrdinaryTextAsItIs) {
  EXPECT_EQ(BusText("Grüße & <b>日本</b> 🎵"), "Grüße & <b>日本</b> 🎵");
  EXPECT_EQ(BusText(""), "");
}

TEST(BusText, CutsNoCharacterInTwo) {
  const std::string text = std::string(4095, 'x') + "é";
  EXPECT_EQ(BusText(text), std::string(4095, 'x'));
}

TEST(BusText, ControlCharactersBecomeBlanks) {
  EXPECT_EQ(BusText("a\tb\x1B"
                    "c\x7F"
                    "d"),
            "a b c d");
}

TEST(AddressOf, EscapesWhatAnAddressDoesNotHold) {
  EXPECT_EQ(AddressOf("/music/a b/ü#1?.flac"), "file:///music/a%20b/%C3%BC%231%3F.flac");
  EXPECT_EQ(AddressOf("/100%.mp3"), "file:///100%25.mp3");
}

TEST(AddressOf, LeavesAnAddressItsOwnEscapes) {
  EXPECT_EQ(AddressOf("https://radio.example/a%20b?x=1#y"), "https://radio.example/a%20b?x=1#y");
  EXPECT_EQ(AddressOf("http://radio.example/a b\n"), "http://radio.example/a%20b%0A");
  EXPECT_EQ(AddressOf("file:///a%FFb"), "file:///a%FFb");
}

TEST(AddressOf, WhatOthersCantOpenHasNone) {
  for (const char* source : {"", "cdda:///dev/sr0#1", "mms://radio.example", "music\\one.mp3"})
    EXPECT_EQ(AddressOf(source), "") << source;
}

TEST(Hex, GoesThereAndBack) {
  const std::string name("\0a\xFFü", 5);
  EXPECT_EQ(mpris::FromHex(mpris::Hex(name)), name);
  EXPECT_EQ(mpris::FromHex("abc"), "");
  EXPECT_EQ(mpris::FromHex("zz"), "");
}
