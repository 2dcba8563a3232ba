// Marks what the platform library exports besides the frameworks' own functions: its interface for tools and tests.
#pragma once

#define PLATFORM_API __attribute__((visibility("default")))
