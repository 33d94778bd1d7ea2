#include "desktop/editor/EntryData.hpp"

#include <QtGui/QIcon>

#include "desktop/popup/ShownText.hpp"

namespace desktop {

namespace {

/// Of an entry that stands for a title; the others have but words about their state there.
QString AddressOf(const ui::editor::Entry& entry) {
  if (entry.tag == "OK" || entry.tag == "Refresh") return {};
  return ShownText(entry.tag);
}

QString TipOf(const ui::editor::Entry& entry) {
  QString tip = ShownText(entry.text()).toHtmlEscaped();
  if (const QString address = AddressOf(entry); !address.isEmpty())
    tip += "<br><small>" + address.toHtmlEscaped() + "</small>";
  return "<qt>" + tip + "</qt>";
}

}  // namespace

QVariant EntryData(const ui::editor::Entry& entry, int role, const IconOf& icon) {
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: return ShownText(entry.text());
    case Qt::AccessibleDescriptionRole: return AddressOf(entry);
    case Qt::DecorationRole: return icon(entry.image());
    case Qt::ToolTipRole: return TipOf(entry);
    default: return {};
  }
}

}  // namespace desktop
