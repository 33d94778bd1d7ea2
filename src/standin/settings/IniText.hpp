#pragma once
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace standin {

/// The content of one settings file. Sections and keys are found without regard to case and keep the
/// spelling of their first appearance; remarks and lines that mean nothing stay where they are.
///
/// In the text a key or value stands as it is, unless it holds control characters, has blanks at an end or
/// begins with a quote: then it stands in double quotes with \" \\ \n \r \t and \xHH inside.
class IniFile {
 public:
  IniFile() = default;
  IniFile(const IniFile&) = delete;
  IniFile& operator=(const IniFile&) = delete;
  IniFile(IniFile&&) = default;
  IniFile& operator=(IniFile&&) = default;
  ~IniFile() = default;

  /// Never fails: what can't be understood is kept as a remark.
  static IniFile parse(std::string_view text);
  [[nodiscard]] std::string format() const;

  /// The value, or null when the key is absent.
  [[nodiscard]] const std::string* find(std::string_view section, std::string_view key) const;
  void set(std::string_view section, std::string_view key, std::string value);
  void clear(std::string_view section);
  [[nodiscard]] bool has(std::string_view section) const { return look(section) != nullptr; }
  /// The entries of a section as key=value, in their order.
  [[nodiscard]] std::vector<std::string> entries(std::string_view section) const;
  /// Of all names, values and remarks.
  [[nodiscard]] std::size_t bytes() const { return bytes_; }

 private:
  struct Line {
    std::string key;
    std::string value;
    bool remark = false;
  };
  struct Section {
    std::string name;
    std::vector<Line> lines;
    std::unordered_map<std::string, std::size_t> byKey;
  };
  Section& need(std::string_view name);
  [[nodiscard]] const Section* look(std::string_view name) const;

  std::size_t bytes_ = 0;
  std::list<Section> sections_;
  std::unordered_map<std::string, std::list<Section>::iterator> byName_;
};

}  // namespace standin
