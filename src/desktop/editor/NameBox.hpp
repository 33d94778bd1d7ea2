#pragma once
#include <QtCore/QAbstractListModel>
#include <QtCore/QTimer>
#include <QtWidgets/QComboBox>

#include "desktop/editor/Shared.hpp"

namespace desktop {

/// The box with the playlists' names. However often its names change, it looks at them once, when nothing
/// else happens any more.
class NameBox : public QComboBox {
 public:
  explicit NameBox(Shared& shared);
  ~NameBox() override;
  NameBox(const NameBox&) = delete;
  NameBox& operator=(const NameBox&) = delete;
  NameBox(NameBox&&) = delete;
  NameBox& operator=(NameBox&&) = delete;

  /// The names to show; may be null.
  void serve(ui::editor::DropBox* names);
  void abandon();
  void showPopup() override;

 private:
  class Names;
  void stale();
  void refresh();

  Shared& shared_;
  Names* names_;
  ui::editor::DropBox* box_ = nullptr;
  QTimer refresh_;  // runs while other names than those shown are known
};

}  // namespace desktop
