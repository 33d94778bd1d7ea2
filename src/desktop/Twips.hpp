#pragma once

namespace desktop {

/// Lengths of the system are in twips, of which a pixel of the desktop has 15.
constexpr float kTwipsPerPixel = 15;

constexpr float ToTwips(int pixels) { return static_cast<float>(pixels) * kTwipsPerPixel; }
constexpr int ToPixels(float twips) { return static_cast<int>(twips / kTwipsPerPixel); }

}  // namespace desktop
