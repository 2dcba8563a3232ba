// The profile in use of an output's display, asked for with libcolord alone: the twin of GetProfilePath.
#pragma once

#include <memory>
#include <string>

namespace bench {

/// One thread. Connected to colord once; the devices are asked for at every call.
class DirectProfile {
 public:
  /// Throws std::runtime_error without a colord.
  DirectProfile();
  ~DirectProfile();
  DirectProfile(const DirectProfile&) = delete;
  DirectProfile& operator=(const DirectProfile&) = delete;

  /// From now on devices and profiles stay connected once they are, so that a walk asks colord for the list of devices
  /// only.
  void keepConnected();

  /// Walks the display devices and their profiles up to the first one of the output's device, and answers its file;
  /// "" when there is none.
  std::string file(const std::string& output) const;

  /// Makes colord's profile of this file the default one of the output's device: the twin of SetProfile. False when
  /// colord knows one of them not, or refuses.
  bool makeDefault(const std::string& output, const std::string& file) const;

 private:
  struct Client;
  std::unique_ptr<Client> client_;
};

}  // namespace bench
