#include "ear/decoder/Fit.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace ear {
namespace {

constexpr std::string_view kPhone = "+phone+";

/// Which phones are alike: vowels, stops, hisses, nasals, glides.
int KindOf(const std::string& phone) {
  constexpr std::array<std::string_view, 4> kKinds{" P B T D K G ", " F V TH DH S Z SH ZH CH JH HH ",
                                                   " M N NG ", " L R W Y "};
  if (std::string_view("AEIOU").find(phone.front()) != std::string_view::npos) return -1;
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (kKinds[i].find(" " + phone + " ") != std::string_view::npos) return static_cast<int>(i);
  }
  return static_cast<int>(kKinds.size());
}

double Change(const std::string& from, const std::string& to) {
  if (from == to) return 0;
  const int kind = KindOf(from);
  if (kind != KindOf(to)) return 1;
  return kind < 0 ? 0.5 : 0.6;  // vowels are confused more easily
}

/// What a chain of phones scores up to each frame.
std::vector<double> SumsOf(const std::vector<Piece>& phones) {
  std::vector<double> upTo{0};
  for (const Piece& phone : phones) {
    const double each = phone.score / (phone.end - phone.begin + 1);
    for (int i = phone.begin; i <= phone.end; ++i) {
      if (static_cast<std::size_t>(i) + 1 == upTo.size()) upTo.push_back(upTo.back() + each);
    }
  }
  return upTo;
}

}  // namespace

bool IsFiller(const Piece& piece) {
  return piece.word.empty() || std::string_view("<[(+").find(piece.word.front()) != std::string_view::npos;
}

std::string PhoneWord(const std::string& phone) { return std::string(kPhone) + phone; }

std::string PhoneOf(const Piece& piece) {
  return piece.word.starts_with(kPhone) ? piece.word.substr(kPhone.size()) : std::string();
}

double PhoneDistance(const std::vector<std::string>& left, const std::vector<std::string>& right) {
  std::vector<double> row(right.size() + 1);
  for (std::size_t j = 0; j < row.size(); ++j) row[j] = static_cast<double>(j);
  for (std::size_t i = 0; i < left.size(); ++i) {
    double across = row[0];
    row[0] = static_cast<double>(i + 1);
    for (std::size_t j = 0; j < right.size(); ++j) {
      const double above = row[j + 1];
      row[j + 1] = std::min({above + 1, row[j] + 1, across + Change(left[i], right[j])});
      across = above;
    }
  }
  return row.back();
}

Fit FitOf(const std::vector<Piece>& words, const std::vector<Piece>& phones,
          const std::function<std::vector<std::string>(const std::string& word)>& phonesOf) {
  const std::vector<double> upTo = SumsOf(phones);
  const auto last = static_cast<int>(upTo.size()) - 1;
  const auto sum = [&](int frame) { return upTo[static_cast<std::size_t>(std::clamp(frame, 0, last))]; };
  Fit fit;
  double better = 0;
  int frames = 0;
  std::vector<std::string> said;
  for (const Piece& word : words) {
    if (IsFiller(word)) continue;
    const int length = word.end - word.begin + 1;
    const double difference = word.score - (sum(word.end + 1) - sum(word.begin));
    fit.worst = frames == 0 ? difference / length : std::min(fit.worst, difference / length);
    better += difference;
    frames += length;
    for (std::string& phone : phonesOf(word.word)) said.push_back(std::move(phone));
  }
  std::vector<std::string> heard;
  int spoken = 0;
  for (const Piece& phone : phones) {
    std::string name = PhoneOf(phone);
    if (name.empty()) continue;
    spoken += phone.end - phone.begin + 1;
    heard.push_back(std::move(name));
  }
  fit.mean = better / std::max(frames, 1);
  fit.distance = said.empty() ? 1 : PhoneDistance(said, heard) / static_cast<double>(said.size());
  fit.covered = spoken == 0 ? 0 : static_cast<double>(frames) / spoken;
  return fit;
}

std::uint32_t Certainty(const Fit& fit) {
  // Weights by logistic regression over one half of the synthetic voices and sentences of bench_recognition,
  // clean and at 20 dB, tried with the other half: it prints what they do. None may outweigh all others.
  const double sum = 0.15 * std::clamp(fit.mean, -20.0, 20.0) + 0.07 * std::clamp(fit.worst, -60.0, 20.0) -
                     4.0 * std::min(fit.distance, 2.0) + 6.0 * std::min(fit.covered, 2.0) - 2.2;
  constexpr double kPerhaps = -1.5;
  constexpr double kSurest = 3;
  const double certain = sum < 0 ? 0.6 - 0.3 * sum / kPerhaps : 0.6 + 0.4 * sum / kSurest;
  return static_cast<std::uint32_t>(std::lround(1000 * std::clamp(certain, 0.0, 1.0)));
}

}  // namespace ear
