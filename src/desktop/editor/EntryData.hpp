#pragma once
#include <QtCore/QVariant>

#include <functional>

#include "ui/editor/Entry.hpp"

class QIcon;

namespace desktop {

/// Gives the picture of a key.
using IconOf = std::function<QIcon(const char* key)>;

/// What a pane shows of an entry, whatever it is in. Entries of one name are told apart by a tool tip with
/// the address.
QVariant EntryData(const ui::editor::Entry& entry, int role, const IconOf& icon);

}  // namespace desktop
