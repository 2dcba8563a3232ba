// Marks the functions that the library exports: the facade and the services.
#pragma once

#define OSTREVIN_API __attribute__((visibility("default")))
