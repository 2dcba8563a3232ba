// Which entries of the family this host does not serve, and why. Together with what it serves that is the whole family,
// so that a new member has to be either served or put here.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "host_end_to_end/family_test.h"

namespace {

using ::testing::ElementsAre;

using Names = std::set<std::string>;

struct Unserved {
  const char* reason;
  Names entries;
};

// clang-format off
const Unserved kUnserved[] = {
    {"converts between text encodings, and this host's strings keep the bytes they were built of", {
        "REALConvertString"}},
    {"answers with a string of the system, of which this host makes none", {
        "PluginCopyTextCFString", "REALGetStringCFString", "REALGetStringSystemStr"}},
    {"needs shared methods, events, delegates, exceptions or interfaces, which this host's objects do not have", {
        "GetEventInstance", "GetInterfaceRoutine", "PluginCallFunctionWithExceptionHandler",
        "PluginGetDelegateInvoker", "PluginGetPluginData", "PluginLoadSharedMethod", "RuntimeRaiseException"}},
    {"has to do with structures, which this host's language does not have", {
        "PluginRegisterStructure", "PluginStructureFromVariant", "PluginStructureToVariant",
        "RuntimeDirectReadStructureArray"}},
    {"registers something other than a module, which is all that this host takes", {
        "PluginRegisterBackgroundTask", "PluginRegisterClass", "PluginRegisterClassExtension", "PluginRegisterControl",
        "PluginRegisterEnum", "PluginRegisterInterface", "PluginRegisterMethod", "PluginUnregisterBackgroundTask"}},
    {"has to do with pictures, which this host does not have", {
        "PluginPictureGetType", "REALBuildPictureFromBuffer", "REALBuildPictureFromPictureDescription",
        "REALCopyPictureCGImage", "REALGetPictureMask", "REALLockPictureDescription", "REALPictureClearCache",
        "drawPicturePrimitive", "lockPictureDescription", "newPicture", "pluginPictureGraphicsGetter",
        "unlockPictureDescription"}},
    {"draws, and this host has nothing to draw on", {
        "PluginDefaultControlCaption", "PluginDefaultControlFont", "PluginDefaultControlFontSize",
        "REALGetFontEncoding", "REALGetGraphicsFontStyle", "REALGetGraphicsOrigin", "REALGraphicsDC",
        "REALSetGraphicsOrigin", "REALSetGraphicsStyle", "RuntimeGraphicsDrawLine", "RuntimeGraphicsDrawString",
        "RuntimeGraphicsStringHeight", "RuntimeGraphicsStringWidth", "RuntimeGraphicsTextAscent",
        "RuntimeGraphicsTextHeight"}},
    {"has to do with controls and windows, which this host does not have", {
        "GetControlBounds", "GetControlVisible", "GetTabPanelVisible", "REALGetControlEnabled", "REALGetControlFocus",
        "REALGetControlGraphics", "REALGetControlHandle", "REALGetControlName", "REALGetControlParent",
        "REALGetWindowHandle", "REALInvalidateControl", "REALInvalidateControlRect", "REALSetControlFocus",
        "RuntimeMsgBox", "SetControlVisible", "controlEnabledSetter", "ctlPosGetter", "ctlPosSetter",
        "getControlWindow"}},
    {"has to do with databases, which this host does not have", {
        "DesignAddDataSource", "PluginRegisterDBCursor", "PluginRegisterDBEngine", "PluginRegisterDBTable",
        "REALConstructDBDatabase", "REALDBConnectionDialogAddField", "REALDBConnectionDialogCreate",
        "REALDBConnectionDialogDelete", "REALDBConnectionDialogShow", "REALGetCursorFromREALdbCursor",
        "REALGetDBDatabaseName", "REALGetDBFromREALdbDatabase", "REALGetDBHost", "REALGetDBPassword",
        "REALGetDBUserName", "REALSetDBIsConnected", "REALdbCursorFromDBCursor", "REALdbDatabaseFromDBDatabase",
        "RegisterDataSource", "RegisterDataSourceInterface", "RegisterDatabaseConnection"}},
    {"has to do with sockets, which this host does not have", {
        "PluginMarkSocketUsage", "SocketWrite", "pluginSocketListen", "pluginSocketLookahead", "pluginSocketRead",
        "pluginSocketReadAll", "socketClose", "socketDirectConnect", "socketGetEvents", "socketLastErrorCode",
        "socketLocalAddressGetter", "socketPoll"}},
    {"has to do with Apple events, which this host does not exchange", {
        "REALAccessAppleEvent", "REALAccessAppleEventReply", "REALBuildAEDescList", "REALBuildAEObjSpecifier",
        "REALBuildAppleEvent"}},
    {"has to do with files and folders of a program, of which this host has none", {
        "REALFSRefFromFolderItem", "REALFolderItemFromParentFSRef", "REALGetProjectFolder", "REALpathFromFolderItem"}},
};
// clang-format on

/// The entries of all members, from the list that the members' own tests are made from.
Names entriesOfTheFamily() {
  std::ifstream file(HOST_MEMBERS);
  Names entries;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string member;
    std::string bar;
    std::string entry;
    if (line.front() != '#' && words >> member >> bar >> entry && bar == "|" && entry != "-") {
      entries.insert(entry);
    }
  }
  return entries;
}

Names unservedEntries() {
  Names all;
  for (const Unserved& unserved : kUnserved) {
    all.insert(unserved.entries.begin(), unserved.entries.end());
  }
  return all;
}

Names without(const Names& names, const Names& others) {
  Names rest;
  std::set_difference(names.begin(), names.end(), others.begin(), others.end(), std::inserter(rest, rest.end()));
  return rest;
}

class ServedEntries : public FamilyTest {
 protected:
  Names served() {
    const std::vector<std::string> names = host_.entries().names();
    return {names.begin(), names.end()};
  }
};

TEST_F(ServedEntries, AreAllButThoseWithAReasonWhyNot) {
  const Names family = entriesOfTheFamily();
  ASSERT_GT(family.size(), 200U) << "the list of members was not read: " << HOST_MEMBERS;
  EXPECT_EQ(without(family, served()), unservedEntries());
}

TEST_F(ServedEntries, BelongToMembersOrToTheHandshake) {
  EXPECT_THAT(without(served(), entriesOfTheFamily()), ElementsAre("RegisterPluginVersion"));
}

TEST_F(ServedEntries, AreEachLeftOutForOneReason) {
  std::size_t count = 0;
  for (const Unserved& unserved : kUnserved) {
    count += unserved.entries.size();
  }
  EXPECT_EQ(count, unservedEntries().size());
}

TEST_F(ServedEntries, LeftOutGiveTheFallbackOfTheirMember) {
  EXPECT_EQ(REALGetControlEnabled(static_cast<void*>(nullptr)), 0);
  EXPECT_EQ(REALRegisterBackgroundTask(static_cast<void*>(nullptr)), 0xFFFFFFFFU);
  EXPECT_EQ(REALConvertString(static_cast<void*>(nullptr), 0U), 0);
  EXPECT_THAT(host_.entries().lookups(),
              ElementsAre("REALGetControlEnabled", "PluginRegisterBackgroundTask", "REALConvertString"));
}

}  // namespace
