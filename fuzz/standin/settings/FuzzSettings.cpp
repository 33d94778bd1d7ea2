// Settings files and journals with arbitrary content: always read; what is written reads back the same.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/Alphabet.hpp"
#include "standin/settings/IniText.hpp"
#include "standin/settings/SettingsJournal.hpp"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = support::Spelled(data, size);
  const std::string once = standin::IniFile::parse(text).format();
  Require(standin::IniFile::parse(once).format() == once);

  // Any three texts as section, key and value.
  const std::size_t third = text.size() / 3;
  const std::string section = text.substr(0, third);
  const std::string key = text.substr(third, third);
  const std::string value = text.substr(2 * third);
  standin::IniFile file;
  file.set(section, key, value);
  const standin::IniFile again = standin::IniFile::parse(file.format());
  const std::string* found = again.find(section, key);
  Require(found != nullptr && *found == value);

  standin::SettingChange change;
  standin::SettingsJournal::readLine(text, change);
  const std::string line =
      standin::SettingsJournal::lineOf({standin::SettingChange::Kind::kSet, "a.ini", section, key, value});
  Require(line.find('\n') == line.size() - 1);
  Require(standin::SettingsJournal::readLine(line.substr(0, line.size() - 1), change));
  Require(change.section == section && change.key == key && change.value == value);
  return 0;
}
