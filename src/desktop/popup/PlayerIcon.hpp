#pragma once
#include <QtGui/QIcon>

namespace desktop {

/// The application's icon in the sizes that desktops ask for, of the same drawing as the one in their menus.
QIcon PlayerIcon();

}  // namespace desktop
