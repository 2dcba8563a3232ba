// The tool's commands. Each prints to the standard output, as a text or as JSON, and answers an exit status. What the
// user got wrong is thrown as ValueError.
#pragma once

#include <string>
#include <vector>

#include "devhost/tool/session.h"

namespace devhost::tool {

/// The displays: number, index, name, bounds, scale, profile.
int listDisplays(Session& session);
/// The modules as registered.
int listMethods(Session& session);
/// Any method by name, with arguments as the user wrote them.
int callMethod(Session& session, const std::string& name, const std::vector<std::string>& arguments);
/// The installed profiles, or with a display's number those of the display, as the plugin's events tell them.
int listProfiles(Session& session, const std::string& display);
/// Whether a profile file has a tag.
int testTag(Session& session, const std::string& path, const std::string& tag);
/// The document in a profile file's QV02 tag.
int printQv02(Session& session, const std::string& path);

}  // namespace devhost::tool
