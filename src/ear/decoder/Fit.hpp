#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ear {

/// A piece of what a search has found in a sound: a word, or one phone of a chain of any.
struct Piece {
  std::string word;
  int begin = 0;  ///< first frame
  int end = 0;    ///< last frame
  double score = 0;
};
/// Whether it stands for silence or noise, and for no word.
bool IsFiller(const Piece& piece);
/// The name of a phone among the words, and back; empty for what is none.
std::string PhoneWord(const std::string& phone);
std::string PhoneOf(const Piece& piece);

/// How well a sentence explains a sound that was heard a second time as a chain of any phones.
struct Fit {
  double mean = 0;   ///< what the words score above the chain, by frame; the larger, the better
  double worst = 0;  ///< the same in the worst word
  double distance =
      0;  ///< between the sentence's phones and the chain's, by phone of the sentence; 0 is the best
  double covered = 0;  ///< of the frames in which the chain has phones, the part that the words explain
};

/// `words` and `phones` in the order of the sound; `phonesOf` a word as the search names it. At least one
/// word is none of the fillers.
Fit FitOf(const std::vector<Piece>& words, const std::vector<Piece>& phones,
          const std::function<std::vector<std::string>(const std::string& word)>& phonesOf);
/// The fewest changes that make one chain of phones the other. Such as are alike cost about half.
double PhoneDistance(const std::vector<std::string>& left, const std::vector<std::string>& right);
/// How sure it is that the sentence was said, in thousandths: 600 and more is to be done, below 300 was
/// hardly ever meant.
std::uint32_t Certainty(const Fit& fit);

}  // namespace ear
