#include "catalogue/MediaKey.hpp"

#include <gtest/gtest.h>

#include "base/Failure.hpp"

using catalogue::HexDecodeName;
using catalogue::HexEncodeName;

namespace {

std::string KeyOf(const std::string& name) {
  std::string key = "left over";
  catalogue::MakeMediaKey(name, key);
  return key;
}

bool IsItsOwnKey(const std::string& name) {
  std::string key;
  return catalogue::MakeMediaKey(name, key);
}

}  // namespace

TEST(MediaKey, ANameOfLettersDigitsAndSingleBlanksIsItsOwnKey) {
  for (const char* name : {"Abba", "Blue", "99 Luftballons", "a b C 1"}) {
    EXPECT_TRUE(IsItsOwnKey(name)) << name;
    EXPECT_EQ(KeyOf(name), name);
  }
}

TEST(MediaKey, EverythingElseTurnsIntoOneBlank) {
  EXPECT_EQ(KeyOf("AC/DC - Back in Black!"), "AC DC Back in Black");
  EXPECT_EQ(KeyOf("Rock & Roll"), KeyOf("Rock Roll"));
  EXPECT_EQ(KeyOf("tab\tand\x01 more"), "tab and more");
}

TEST(MediaKey, LettersOutsideAsciiAreOutside) {
  EXPECT_FALSE(IsItsOwnKey("Élan"));
  EXPECT_EQ(KeyOf("Élan"), "lan");
  EXPECT_EQ(KeyOf("Motörhead"), "Mot rhead");
}

TEST(MediaKey, PunctuationAloneHasTheEmptyKey) {
  EXPECT_FALSE(IsItsOwnKey("!!!"));
  EXPECT_EQ(KeyOf("!!!"), "");
}

TEST(MediaKey, BlanksAtTheEndsAndInRowsChangeTheName) {
  for (const char* name : {" Blue", "Blue ", "Road  Trip"}) EXPECT_FALSE(IsItsOwnKey(name)) << name;
  EXPECT_EQ(KeyOf("  Road   Trip  "), "Road Trip");
}

TEST(MediaKey, TheEmptyNameIsItsOwnKey) {
  EXPECT_TRUE(IsItsOwnKey(""));
  EXPECT_EQ(KeyOf(""), "");
}

TEST(HexName, CodesAreUpperCaseWithNothingBetween) {
  EXPECT_EQ(HexEncodeName("AC/DC"), "41432F4443");
  EXPECT_EQ(HexEncodeName("é\xFF"), "C3A9FF");
}

TEST(HexName, EveryNameSurvivesTheWayThereAndBack) {
  for (const char* name : {"AC/DC", "Björk: Début", "日本 \"語\" = :", ""})
    EXPECT_EQ(HexDecodeName(HexEncodeName(name)), name);
}

TEST(HexName, ACharacterBelowSixteenDoesNotSurvive) {
  EXPECT_EQ(HexEncodeName("\tA"), "941");
  EXPECT_EQ(HexDecodeName("941"), "\x94\x01");
}

TEST(HexName, WhatIsNoDigitFails) {
  EXPECT_THROW(HexDecodeName("4G"), base::Failure);
  EXPECT_EQ(HexDecodeName("2f2F"), "//");
}
