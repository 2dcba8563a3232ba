// The tool's commands. Each prints to the standard output, as text or JSON, and returns an exit status. Wrong usage is
// thrown as ValueError.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "devhost/tool/session/session.h"

namespace devhost::tool {

/// The displays: number, index, name, bounds, scale, profile.
int listDisplays(Session& session);

inline constexpr std::size_t kFewestLayoutColumns = 20;
inline constexpr std::size_t kMostLayoutColumns = 1000;

struct LayoutOptions {
  std::optional<std::string> file;  ///< for an SVG picture; "-" is the standard output; absent: draw a text
  bool ascii = false;
  std::optional<std::size_t> width;  ///< absent: the terminal's
};
/// A picture of the arrangement of the displays. Throws OutputError.
int drawLayout(Session& session, const LayoutOptions& options);

inline constexpr double kShortestInterval = 0.01;
inline constexpr double kLongestInterval = 1e6;

struct WatchOptions {
  double interval = 1;  ///< seconds
  std::optional<std::uint32_t> count;
  std::optional<double> duration;  ///< seconds
};
/// A line for each change of the displays, until a signal or the end of the output's reader.
int watchDisplays(Session& session, const WatchOptions& options);

/// What each source reports about the displays, and what is missing.
int diagnose(Session& session);

/// The modules as registered.
int listMethods(Session& session);
/// Any method by name, with arguments as the user wrote them.
int callMethod(Session& session, const std::string& name, const std::vector<std::string>& arguments);
/// The installed profiles, or with a display's number those of the display, from the plugin's events.
int listProfiles(Session& session, const std::string& display);
/// Whether a profile file has a tag.
int testTag(Session& session, const std::string& path, const std::string& tag);
/// The document in a profile file's QV02 tag.
int printQv02(Session& session, const std::string& path);

}  // namespace devhost::tool
