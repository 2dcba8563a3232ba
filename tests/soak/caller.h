// The process that the soak is about: a host with the plugin in it, which makes the calls that the plan says and tells
// what they answered. It knows nothing of what is true.
#pragma once

#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "devhost/entries/host.h"
#include "soak/plan.h"
#include "soak/profiles.h"
#include "soak/record.h"

namespace soak {

class Caller {
 public:
  explicit Caller(const Plan& plan);

  /// Makes the calls. Everything the host found wrong with handles is an exception.
  void run();

 private:
  void prepare();
  void makeCalls();
  void callOne(Method method);
  Method chooseMethod();
  std::uint32_t chooseDisplay();
  std::size_t choose(std::size_t count);

  // Each method: what is in the arguments and the answer of its Call. "display" is a display number.
  void setObject();                     ///< which of the two listeners
  void listAllInstalledProfiles();      ///< numbers: own, others, which listener was called; text: digest
  void listDisplayProfiles();           ///< display; text: NAME=PATH for each, joined with "|"
  void getName(std::uint32_t display);  ///< display; text: name
  void getRect();                       ///< display; numbers: left, top, right, bottom
  void getCGRect();                     ///< display; numbers: x, y, width, height
  void getProfilePath();                ///< display; text: path
  void getIndex();                      ///< display; numbers: index
  void getScale();                      ///< display; numbers: scale
  void setProfile(std::size_t output, std::size_t choice);  ///< output, choice; numbers: 1 for True
  void displayIDForWindow();                                ///< left, top, width, height; numbers: display
  void getInstalledProfilePathsArray();                     ///< numbers: own, others; text: digest
  void getAssociatedProfilePathsArray();                    ///< display; text: the paths, joined with "|"
  void iccTagExists();  ///< file (the count of files: none), tag; numbers: 1 for True
  void qv02Read();      ///< file; numbers: code; text: document

  devhost::CallResult timed(Call& call, const devhost::Values& arguments);
  void write(const std::string& line);
  void writeMemory();

  const Plan plan_;
  const Profiles profiles_;
  std::ofstream pipe_;
  Time flushed_;
  devhost::Host host_;
  devhost::Plugin plugin_;
  devhost::Ref<devhost::Object> listeners_[2];
  std::vector<Listed> events_;
  double heard_by_ = -1;  ///< the listener that the last event went to
  std::mt19937 random_{20240607};
};

}  // namespace soak
