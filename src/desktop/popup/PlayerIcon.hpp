#pragma once
#include <QtGui/QIcon>

namespace desktop {

/// The application's icon, drawn in the sizes that desktops ask for.
QIcon PlayerIcon();

}  // namespace desktop
