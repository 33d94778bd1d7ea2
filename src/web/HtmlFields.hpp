#pragma once
#include <string>

namespace web {

// Builders of form fields. Names, values and attributes go into the text as they are; an empty attributes
// text leaves the blank before the ">" in place. The case of the words in them differs from builder to
// builder, and browsers do not mind.

std::string FormHidden(const std::string& name, const std::string& value);
std::string FormSubmit(const std::string& name, const std::string& value, const std::string& attributes);
/// A text field behind its label, which stands on a line of its own if there is one.
std::string FormText(const std::string& label, const std::string& name, const std::string& value,
                     const std::string& attributes);
/// A box before its label. A ticked one is posted as "TRUE", the other not at all. No line end.
std::string FormCheckBox(const std::string& label, const std::string& name, bool checked,
                         const std::string& attributes);

}  // namespace web
