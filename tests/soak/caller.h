// Makes the soak's calls: a host with the plugin in it, which records every result as text. Main thread only, because
// GetScale reads screens.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "soak/world.h"

namespace soak {

enum class Method : std::size_t {
  kSetObject,
  kListAllInstalledProfiles,
  kListDisplayProfiles,
  kGetName,
  kGetRect,
  kGetCGRect,
  kGetProfilePath,
  kGetIndex,
  kGetScale,
  kSetProfile,
  kDisplayIDForWindow,
  kGetInstalledProfilePathsArray,
  kGetAssociatedProfilePathsArray,
  kICCTagExists,
  kQV02Read,
};

struct MethodFacts {
  const char* name;
  unsigned share;    ///< of ten thousand calls
  std::size_t kept;  ///< bytes that a call keeps on purpose, at most, with malloc's own
};

/// In the order of Method.
inline constexpr MethodFacts kMethods[] = {
    {"SetObject", 100, 0},
    {"ListAllInstalledProfiles", 5, 0},
    {"ListDisplayProfiles", 15, 128},  // the text of the display's UUID
    {"GetName", 1000, 128},            // the text of the look-up
    {"GetRect", 2000, 0},
    {"GetCGRect", 2000, 0},
    {"GetProfilePath", 150, 1536},    // the queue, the text of the look-up, the URL and the description
    {"GetIndex", 1800, 64 * 4 + 16},  // a buffer for 64 numbers
    {"GetScale", 1200, 0},
    {"SetProfile", 10, 0},
    {"DisplayIDForWindow", 1000, 32},  // a buffer for one number
    {"GetInstalledProfilePathsArray", 5, 0},
    {"GetAssociatedProfilePathsArray", 15, 128},  // the text of the display's UUID
    {"ICCTagExists", 400, 0},
    {"QV02Read", 300, 0},
};
inline constexpr std::size_t kMethodCount = std::size(kMethods);

/// Signatures for ICCTagExists: in every file, in some, in none.
inline constexpr const char* kTags[] = {"desc", "QV02", "nono"};

struct Call {
  Method method = Method::kSetObject;
  /// A display number; for SetObject the listener, for SetProfile the output and the choice, for DisplayIDForWindow
  /// left, top, width and height, for the methods of files the file (the count of files: a missing one) and the tag.
  std::array<std::int64_t, 4> arguments{};
  std::string result;  ///< numbers with a blank between them, a text, a list's lines joined with "|", or its digest
  Time begin;
  Time end;

  const MethodFacts& facts() const { return kMethods[static_cast<std::size_t>(method)]; }
};

/// Numbers as results contain them.
std::string textOf(const std::vector<double>& numbers);

class Caller {
 public:
  explicit Caller(World& world);

  /// Looks every display up and assigns every output a profile, so that what is cached is there before measurements.
  std::vector<Call> prepare();
  /// A call of a method chosen by its share, with arguments at random; the same sequence in every run.
  Call makeCall();
  /// Throws when the host found a fault or an unreleased value.
  void checkHost() const;

 private:
  std::size_t choose(std::size_t count) { return random_() % count; }
  std::uint32_t chooseDisplay();
  Method chooseMethod();
  Call make(Method method);
  Call makeOn(Method method, std::uint32_t display);
  Call makeListing(Method method);
  Call makeAssignment(std::size_t output, std::size_t choice);
  Call makeOnFile(Method method);
  devhost::CallResult timed(Call& call, const devhost::Values& arguments);

  World& world_;
  devhost::Host host_;
  devhost::Plugin plugin_;
  devhost::Ref<devhost::Object> listeners_[2];
  std::vector<Listed> events_;
  std::size_t heard_by_ = 0;  ///< the listener of the last event
  std::mt19937 random_{20240607};
};

}  // namespace soak
