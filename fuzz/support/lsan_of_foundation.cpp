// What LeakSanitizer is not to report in fuzzers that use Foundation: tests/lsan.supp's entries for the run-time and
// for constant strings. Stacks end in Foundation, which has no frame pointers, so what its objects hold is not looked
// after here; the sanitizer's run of the tests, which takes the time to unwind, does.
extern "C" {

const char* __lsan_default_suppressions() {
  return "leak:libobjc.so\nleak:libgnustep-base.so\nleak:__CFStringMakeConstantString\n";
}

const char* __lsan_default_options() { return "print_suppressions=0"; }

}  // extern "C"
