#include "web/HtmlFields.hpp"

#include "base/Attempt.hpp"

namespace web {

namespace {

/// The text of a builder whose failures are swallowed.
template <class Builder>
std::string Built(Builder&& builder) {
  std::string text;
  base::Attempt step;
  step([&] { text = builder(); });
  return text;
}

}  // namespace

std::string FormHidden(const std::string& name, const std::string& value) {
  return Built([&] { return R"(<input type="hidden" name=")" + name + R"(" value=")" + value + "\">\r\n"; });
}

std::string FormSubmit(const std::string& name, const std::string& value, const std::string& attributes) {
  return Built([&] {
    return R"(<input type="submit" class="formbutton" name=")" + name + R"(" value=")" + value + "\" " +
           attributes + ">\r\n";
  });
}

std::string FormText(const std::string& label, const std::string& name, const std::string& value,
                     const std::string& attributes) {
  return Built([&] {
    return (label.empty() ? label : label + "<br>") + R"(<input type="text" name=")" + name + R"(" value=")" +
           value + R"(" size="20" class="formtext" )" + attributes + ">\r\n";
  });
}

std::string FormCheckBox(const std::string& label, const std::string& name, bool checked,
                         const std::string& attributes) {
  return Built([&] {
    return R"(<input type="CheckBox" name=")" + name + R"(" value="TRUE" )" + attributes +
           (checked ? " CHECKED" : "") + ">" + label;
  });
}

}  // namespace web
