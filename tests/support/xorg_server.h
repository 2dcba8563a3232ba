// Private X servers for tests: each has its own display number, folder and log, no TCP, and is ended by its process id.
// When a function returns, the server has made the change and notified every client.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/edid_maker.h"
#include "support/process.h"
#include "support/temporary_folder.h"

namespace support {

struct PixelRect {
  int width = 0;
  int height = 0;
  int x = 0;
  int y = 0;
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// An output as `xrandr` shows it.
struct XrandrOutput {
  std::string name;
  std::uint32_t id = 0;
  bool primary = false;
  std::optional<PixelRect> area;  ///< absent: switched off
};

/// A monitor as `xrandr --listmonitors` shows it.
struct XrandrMonitor {
  std::string name;
  bool primary = false;
  PixelRect area;
  std::vector<std::string> outputs;
};

/// Common to every X server here. Throws std::runtime_error with the server's log when it does not start, and
/// when xrandr fails.
class XServer {
 public:
  virtual ~XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;

  /// The value of DISPLAY, such as ":3".
  const std::string& display() const { return display_; }
  /// The server's listening socket.
  std::filesystem::path socket() const;
  std::filesystem::path directory() const { return directory_.path(); }
  pid_t pid() const { return process_->pid(); }
  /// The environment in which a program is a client of this server.
  Environment environment() const;

  /// Runs xrandr with these arguments and returns its output.
  std::string xrandr(const std::vector<std::string>& arguments);
  /// The active and inactive outputs, in the server's order.
  std::vector<XrandrOutput> outputs();
  XrandrOutput output(const std::string& name);
  /// The active monitors, in the server's order.
  std::vector<XrandrMonitor> monitors();

  /// Replaces the resource database by this text (xrdb); an empty text removes it.
  void setResources(const std::string& text);

  /// Ends the server at once, as a crash would. Its display number is then free: a client that keeps connecting may
  /// find another test's server, unless the number was reserved.
  void kill();
  /// Stops the server's process until resume().
  void pause();
  void resume();
  /// Waits until the server has processed every request.
  void sync();

 protected:
  XServer() = default;
  /// Starts the program, which chooses a display number when `display` is empty.
  void start(std::vector<std::string> command, const std::string& display, const Environment& environment = {});
  xcb_connection_t* connection() const { return connection_.get(); }
  xcb_window_t root() const;

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  void connect();
  void removeLeftovers();

  TemporaryFolder directory_;
  std::string display_;
  std::unique_ptr<ChildProcess> process_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;  ///< a server without clients would reset itself
};

/// A real Xorg with sixteen outputs, DUMMY0 to DUMMY15, none of which needs hardware. DUMMY0 is on at first, 1024 x
/// 768, primary; the others are off.
class XorgServer final : public XServer {
 public:
  struct Placement {
    std::string output;
    PixelRect area;
  };

  /// An empty display: any free one.
  explicit XorgServer(const std::string& display = {});

  /// A display name that no other test uses, for a server that is killed or restarted.
  static std::string reservedDisplay();

  /// Switches outputs on, of any size, or moves them; all in one change.
  void place(const std::vector<Placement>& placements);
  void setMode(const std::string& output, int width, int height, int x, int y);
  void off(const std::string& output);
  void makePrimary(const std::string& output);
  void removePrimary();
  /// Sets the output's EDID property to these bytes.
  void setEdid(const std::string& output, const EdidBytes& edid);
  void removeEdid(const std::string& output);
  /// Defines a monitor as `xrandr --setmonitor` does: area such as "800/200x600/150+0+0" and outputs such as "DUMMY1"
  /// or "none".
  void setMonitor(const std::string& name, const std::string& area, const std::string& outputs);
  void removeMonitor(const std::string& name);

 private:
  std::set<std::pair<int, int>> modes_;
  std::set<std::string> output_modes_;
  std::map<std::string, std::uint32_t> ids_;
};

/// An X server inside a window of another, with one output that can be rotated.
class NestedServer final : public XServer {
 public:
  NestedServer(const XServer& outer, int width, int height);
  /// "normal", "left", "right" or "inverted".
  void rotate(const std::string& direction);
};

/// The product name that edid-decode reads from an EDID; empty when it finds none.
std::string decodedName(const EdidBytes& edid);

}  // namespace support
