#pragma once
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "support/LibraryHouse.hpp"

namespace support {

/// One control of an open dialog, as a host makes it: a drop list with its lines.
class FakeControl : public base::Object {
 public:
  using base::Object::call;
  FakeControl(Journal& journal, std::int32_t number) : journal_(journal), number_(number) {}

  std::vector<std::string> lines;
  std::int32_t selected = -1;
  std::string typed;  ///< what a control without lines holds
  float top = 0;
  float left = 0;
  float width = 100;
  bool fails = false;
  bool takesMany = false;  ///< knows `AddItems`
  int asked = 0;           ///< calls

  [[nodiscard]] std::string text() const {
    return selected >= 0 && static_cast<std::size_t>(selected) < lines.size()
               ? lines[static_cast<std::size_t>(selected)]
               : typed;
  }
  void show(const std::string& line) {
    lines = {"", line};
    selected = 1;
  }
  base::Value call(std::string_view name, base::Args& args) override {
    if (fails) throw Failure(base::number::kDeviceIo);
    ++asked;
    if (name == "AddItems" && takesMany) {
      auto at = lines.begin() + base::ToInt32(args.at(0));
      for (const base::Value& line : args.at(1).array()) at = lines.insert(at, base::ToText(line)) + 1;
    } else if (name == "Clear") {
      lines.clear();
      selected = -1;
    } else if (name == "AddItem" && args.size() == 1) {
      lines.push_back(base::ToText(args[0]));
    } else if (name == "AddItem") {
      lines.insert(lines.begin() + base::ToInt32(args[1]), base::ToText(args[0]));
    } else {
      throw Failure(base::number::kNoSuchMember);
    }
    return {};
  }
  base::Value get(std::string_view name) override {
    if (name == "Text") return text();
    if (name == "Top") return top;
    if (name == "Left") return left;
    if (name == "Width") return width;
    throw Failure(base::number::kNoSuchMember);
  }
  void put(std::string_view name, const base::Value& value) override {
    journal_.add("control " + std::to_string(number_) + ": " + std::string(name) + " = " +
                 base::ToText(value));
    if (name == "ListIndex") selected = base::ToInt32(value);
    if (name == "Top") top = base::ToSingle(value);
    if (name == "Left") left = base::ToSingle(value);
    if (name == "Width") width = base::ToSingle(value);
  }

 private:
  Journal& journal_;
  std::int32_t number_;
};

/// The numbered controls of an open dialog.
class FakeControls : public base::Object {
 public:
  using base::Object::call;
  explicit FakeControls(Journal& journal, std::int32_t count = 17) {
    for (std::int32_t i = 1; i <= count; ++i) all.push_back(std::make_shared<FakeControl>(journal, i));
  }
  std::vector<std::shared_ptr<FakeControl>> all;

  FakeControl& operator[](std::int32_t number) { return *all.at(static_cast<std::size_t>(number) - 1); }
  base::Value call(std::string_view name, base::Args& args) override {
    if (name != "item") throw Failure(base::number::kNoSuchMember);
    const std::int32_t number = base::ToInt32(args.at(0));
    if (number < 1 || static_cast<std::size_t>(number) > all.size()) throw Failure(base::number::kIndex);
    return base::ObjectRef(all[static_cast<std::size_t>(number) - 1]);
  }
  base::Value get(std::string_view name) override {
    if (name != "Count") throw Failure(base::number::kNoSuchMember);
    return static_cast<std::int32_t>(all.size());
  }
  void put(std::string_view /*name*/, const base::Value& /*value*/) override {
    throw Failure(base::number::kNoSuchMember);
  }
};

/// A plug-in whose actions, triggers and conditions a host asks for.
class EventHouse : public LibraryHouse {
 protected:
  /// A string of the host: its two leading fields, then the values of the dialog's rows.
  static std::string Action(const std::string& word, const std::string& playList = "",
                            const std::string& album = "", const std::string& artist = "",
                            const std::string& genre = "", const std::string& title = "",
                            const std::string& typed = "", const std::string& mode = "No Action") {
    return Joined({"H0", "H1", word, playList, album, artist, genre, title, typed, mode, ""});
  }
  static std::string Joined(std::initializer_list<std::string> fields) {
    std::string text;
    for (const std::string& field : fields) text += (text.empty() ? "" : "\x02") + field;
    return text;
  }
  std::string text(const std::string& operation, const std::string& argument) {
    return base::ToText(callVxif(operation, argument));
  }
};

}  // namespace support
