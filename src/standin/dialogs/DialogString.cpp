#include "standin/dialogs/DialogString.hpp"

#include <algorithm>
#include <utility>

#include "base/Text.hpp"

namespace standin {

namespace {
constexpr char kSeparator = '\x02';
}  // namespace

std::string Composed(const DialogString& fields) {
  std::string stored = fields.interface + kSeparator + fields.title;
  for (const std::string& value : fields.values) (stored += kSeparator) += value;
  return stored;
}

DialogString ReadDialogString(std::string_view stored) {
  std::vector<std::string> pieces = base::Split(stored, kSeparator);
  DialogString fields;
  if (!pieces.empty()) fields.interface = std::move(pieces[0]);
  if (pieces.size() < 2) return fields;
  fields.title = std::move(pieces[1]);
  fields.values.assign(std::make_move_iterator(pieces.begin() + 2), std::make_move_iterator(pieces.end()));
  return fields;
}

bool MayBeStored(std::string_view text) {
  constexpr unsigned char kLastIllegal = 3;
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) > kLastIllegal; });
}

}  // namespace standin
