// The groups of pairs. Each measures with what it sets up itself, and leaves nothing behind.
#pragma once

#include <string>

#include "suite.h"
#include "support/private_colord.h"
#include "support/xorg_server.h"

namespace bench {

/// Groups that tell how costs grow, with the number of displays and of profile files. Plotted.
inline constexpr const char* kDisplayGrowth = "Growth with displays, scripted desktop";
inline constexpr const char* kProfileLists = "Lists of installed profiles";
inline constexpr const char* kDisplayProfiles = "Lists of a display's profiles, scripted desktop";

/// The name of the live desktop's first display.
inline constexpr const char* kMonitorName = "DELL U2412M";

/// Methods that are about displays, on private X servers and on scripted desktops.
void measureLiveGeometry(Suite& suite, test_support::XorgServer& server);
void measureScriptedGeometry(Suite& suite);
void measureDisplayGrowth(Suite& suite);

/// Names and profiles of displays; the live ones on a private X server with a private colord.
void measureLiveIdentity(Suite& suite, test_support::XorgServer& server, test_support::PrivateColord& colord);
void measureNameGrowth(Suite& suite);

/// Lists of installed profiles and tags, beside lcms2.
void measureProfileLists(Suite& suite);
void measureDisplayProfiles(Suite& suite);
void measureTags(Suite& suite);
void measureDocuments(Suite& suite);

/// Conversions of text, beside iconv.
void measureText(Suite& suite);

/// The load of the plugin in fresh processes.
void measureLoad(Suite& suite);
/// Whole processes: the tool, and other programs that do the same job.
void measurePeers(Suite& suite, test_support::XorgServer& server, test_support::PrivateColord& colord);
/// The start of a process that uses the plugin, part by part.
void measureStart(Suite& suite);

}  // namespace bench
