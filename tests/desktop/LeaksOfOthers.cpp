// What the libraries of the desktop keep to the end of the process is no leak of ours.
extern "C" const char* __lsan_default_suppressions();  // NOLINT: the sanitizer's own name
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libdbus-1.so\nleak:libQt6DBus.so\nleak:libfontconfig.so\n";
}
