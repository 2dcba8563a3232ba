// Private Wayland compositors for tests: sway and weston without a screen, in a folder of their own, ended by their
// process ids. As root, sway runs as another user, since it refuses root.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/temporary_folder.h"

namespace support {

/// An output as `swaymsg` shows it; the area is in points.
struct SwayOutput {
  std::string name;
  bool active = false;
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  double scale = 0;
};

/// The command that runs another as an ordinary user, who owns `folder` from then on.
std::vector<std::string> asOrdinaryUser(const std::string& folder, std::vector<std::string> command);

/// Outputs HEADLESS-1 and on. Throws std::runtime_error with the compositor's log when it does not start, and when a
/// command fails.
class SwaySession {
 public:
  explicit SwaySession(int outputs = 1);
  /// With a further output, WL-1, that is a window of another compositor, which must outlive this one.
  SwaySession(int outputs, const SwaySession& outer);
  ~SwaySession();
  SwaySession(const SwaySession&) = delete;
  SwaySession& operator=(const SwaySession&) = delete;

  /// The path of the compositor's socket.
  std::string socket() const { return folder_.path("wayland-1"); }
  /// The environment in which a program is a client of this compositor and of no X server.
  Environment environment() const;

  /// Runs a command that may be repeated, such as {"output", "HEADLESS-1", "scale", "2"}; returns its reply.
  std::string swaymsg(std::vector<std::string> arguments) const;
  /// Adds an output with the next number.
  void createOutput() const;
  /// Closes all windows. An output that is a window is unplugged by that; of its own, a compositor without a screen may
  /// be unable to unplug any.
  void closeWindows() const;
  /// In sway's order.
  std::vector<SwayOutput> outputs() const;
  /// The globals' names of the outputs, by the outputs' names (wayland-info).
  std::map<std::string, std::uint32_t> numbers() const;

  /// Ends the compositor at once, as a crash would.
  void kill();
  /// A new compositor at the same socket.
  void restart(int outputs);
  /// Stops the compositor's process until resume().
  void pause() const;
  void resume() const;

 private:
  void start(int outputs);

  const std::string outer_;
  TemporaryFolder folder_;
  std::unique_ptr<ChildProcess> process_;
};

/// weston with one output, which cannot be changed. Throws std::runtime_error with its log when it does not start.
class WestonSession {
 public:
  /// `options` describe the output, such as "--scale=2".
  explicit WestonSession(const std::vector<std::string>& options);
  ~WestonSession();
  WestonSession(const WestonSession&) = delete;
  WestonSession& operator=(const WestonSession&) = delete;

  std::string socket() const { return folder_.path("wayland-1"); }
  /// What `wayland-info` prints.
  std::string globals() const;

 private:
  Environment environment() const;

  TemporaryFolder folder_;
  std::unique_ptr<ChildProcess> process_;
};

}  // namespace support
