// LeakSanitizer's suppressions in fuzzers that use Foundation: those of tests/lsan.supp for the run-time and for
// constant strings. Foundation has no frame pointers, so stacks end in it, and leaks of its objects are not found here;
// the sanitizer's run of the tests, which unwinds slowly, finds them.
extern "C" {

const char* __lsan_default_suppressions() {
  return "leak:libobjc.so\nleak:libgnustep-base.so\nleak:__CFStringMakeConstantString\n";
}

const char* __lsan_default_options() { return "print_suppressions=0"; }

}  // extern "C"
