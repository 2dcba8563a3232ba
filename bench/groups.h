// The groups of rows, and the live desktop that some of them share.
#pragma once

#include <memory>
#include <string>

#include "suite.h"
#include "support/private_colord.h"
#include "support/xorg_server.h"

namespace bench {

inline constexpr const char* kProfile = "/usr/share/color/icc/colord/AdobeRGB1998.icc";
/// The name of the live desktop's first display, and of every named scripted one.
inline constexpr const char* kMonitorName = "DELL U2412M";
/// The displays of the live desktop that have a device in colord.
inline constexpr long kLiveDisplays = 3;
/// Displays of a grid, live or scripted, in points.
inline constexpr int kGridColumns = 8;
inline constexpr int kGridWidth = 400;
inline constexpr int kGridHeight = 225;

/// An X server and a colord of the benchmark's own, and three displays with kProfile. The servers start with the first
/// use and end with the object.
class LiveDesktop {
 public:
  LiveDesktop();
  ~LiveDesktop();
  LiveDesktop(const LiveDesktop&) = delete;
  LiveDesktop& operator=(const LiveDesktop&) = delete;

  /// Makes this the desktop in use, with the three displays or, permanently, with more in a grid.
  void use(long displays);

  // To be called after use().
  support::PrivateColord& colord();
  /// The CGDirectDisplayID of an output, such as "DUMMY0".
  std::uint32_t display(const std::string& output);
  /// Registers absent displays with colord until it has this many devices, those of the three displays included.
  void growDevices(long count);

 private:
  void start();
  void makeGrid(long count);

  struct Servers;
  std::unique_ptr<Servers> servers_;
  long devices_ = kLiveDisplays;
  long displays_ = 3;
};

/// Registers devices with colord, as it keeps them of displays that were connected once, so that it has `count` after
/// it had `present`.
void registerAbsentDisplays(support::PrivateColord& colord, long present, long count);

/// Whole processes: the tool beside other programs that do the same job, and the load of the plugin.
void addProcesses(const Suite& suite, LiveDesktop& live);
void addNames(const Suite& suite, LiveDesktop& live);
/// The profiles of a display, beside libcolord.
void addDisplayProfiles(const Suite& suite, LiveDesktop& live);
void addGeometry(const Suite& suite, LiveDesktop& live);
/// Lists of installed profiles, beside lcms2.
void addProfileLists(const Suite& suite);
/// Tags and documents of one file, beside lcms2 and memcpy.
void addProfileFiles(const Suite& suite);
/// Conversions of text, beside iconv.
void addText(const Suite& suite);

}  // namespace bench
