// The assertions once more, as Objective-C++ sees the headers, with those about AppKit's objects.
#include "framework_declarations.cpp"
