// fontconfig keeps a process-wide cache that it never frees; Pango's measurer fills it. The leak
// checker of the sanitizer build is told so, and stays on for everything else.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}
