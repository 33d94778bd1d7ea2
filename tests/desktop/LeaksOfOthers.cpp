// What the libraries of the desktop keep to the end of the process is no leak of ours.
extern "C" const char* __lsan_default_suppressions();  // NOLINT: the sanitizer's own name
extern "C" const char* __lsan_default_suppressions() {
  // Of the last, now and then, the picture of a window whose screen goes while it is drawn.
  return "leak:libdbus-1.so\nleak:libQt6DBus.so\nleak:libfontconfig.so\nleak:libQt6XcbQpa.so\n";
}
