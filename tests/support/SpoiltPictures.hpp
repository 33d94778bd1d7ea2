#pragma once

namespace support {

/// For a page before it is read: what an image is told to show is something else, which isn't there, for as
/// long as its `window.spoils` says so; `window.failed` counts.
constexpr const char* kSpoilsPictures = R"(
  window.spoils = true; window.failed = 0;
  const own = Object.getOwnPropertyDescriptor(HTMLImageElement.prototype, 'src');
  Object.defineProperty(HTMLImageElement.prototype, 'src', {...own, set(value) {
    own.set.call(this, window.spoils ? '/nothing.png' : value); }});
  addEventListener('error', (event) => { if (event.target instanceof HTMLImageElement) window.failed++; }, true);)";

}  // namespace support
