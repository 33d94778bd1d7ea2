#pragma once
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ear/Messages.hpp"
#include "ear/SpeechNetwork.hpp"
#include "ear/decoder/Fit.hpp"

struct ps_decoder_s;

namespace ear {

/// Finds the sentence of a network that a sound is most like, and how sure that is: the same sound is heard a
/// second time as a chain of any phones, and a sentence that explains it much worse than that was not said.
class Decoder {
 public:
  /// `models` holds the acoustic model and the dictionary. Throws std::runtime_error, with words for the
  /// user, where they are missing or don't work.
  explicit Decoder(const std::filesystem::path& models);
  ~Decoder();
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  Decoder(Decoder&&) = delete;
  Decoder& operator=(Decoder&&) = delete;

  struct Found {
    Heard heard;
    Fit fit;
  };

  /// Once. Throws std::runtime_error where nothing can be said at all.
  Learnt learn(const SpeechNetwork& network);
  /// 16,000 samples a second, after `learn`.
  Found hear(const std::vector<std::int16_t>& sound);

 private:
  void free();
  static std::vector<Piece> pieces(ps_decoder_s& decoder, const char* search,
                                   const std::vector<std::int16_t>& sound);
  [[nodiscard]] bool isKnown(const std::string& word) const;
  /// Beside those that it has.
  void addWays(const std::string& word, const std::vector<std::string>& ways);
  void learnSpellings(const std::vector<SpeechNetwork::Spelling>& spellings);
  [[nodiscard]] std::vector<std::string> phonesOf(const std::string& word) const;
  void learnPhones();

  ps_decoder_s* decoder_ = nullptr;
  ps_decoder_s* phones_ = nullptr;  ///< for the chain of phones, which is found beside the sentence
  std::filesystem::path dictionary_;
};

}  // namespace ear
