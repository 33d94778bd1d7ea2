#pragma once

class QApplication;

namespace desktop {

/// Gives all windows the colours of the house's pages, light or dark as the user's desktop is.
void ApplyLook(QApplication& application);

}  // namespace desktop
