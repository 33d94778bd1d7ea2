#pragma once

class QWidget;

namespace desktop {

/// Shows a window that waits for an answer before all others: also before one that stays on top of others and
/// that can't be used until then.
void ShowInFront(QWidget& window);

}  // namespace desktop
