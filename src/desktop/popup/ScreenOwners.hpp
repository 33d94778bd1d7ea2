#pragma once
#include <cstdint>

/// Who looks after the screen beside us. To be asked while there are windows; each question goes to the
/// screen.
namespace desktop {

/// Whether windows have a frame and can be minimised. True where the screen is not X's.
bool HasWindowManager();
/// The window of the notification area that takes icons as windows, 0 when there is none. From then on its
/// end is among the events that the screen sends.
std::uint32_t NotificationWindow();
/// Whether an event of X's may mean that a notification area has come or gone.
bool TellsOfOwners(const void* xEvent);

}  // namespace desktop
