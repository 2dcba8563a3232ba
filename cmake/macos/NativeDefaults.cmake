# On a Mac, before the languages are enabled: build for both architectures unless the user says otherwise.
if(CMAKE_HOST_APPLE)
  set(CMAKE_OSX_ARCHITECTURES "arm64;x86_64" CACHE STRING "Architectures to build for")
  set(OSTREVIN_OWN_DEPLOYMENT_TARGETS ON)
  if(CMAKE_OSX_DEPLOYMENT_TARGET OR DEFINED ENV{MACOSX_DEPLOYMENT_TARGET})
    set(OSTREVIN_OWN_DEPLOYMENT_TARGETS OFF)
  endif()
endif()
