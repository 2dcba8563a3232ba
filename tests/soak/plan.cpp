#include "soak/plan.h"

#include <map>
#include <sstream>
#include <stdexcept>

namespace soak {
namespace {

std::string joined(const std::vector<std::uint32_t>& numbers) {
  std::string text;
  for (const std::uint32_t number : numbers) {
    text += (text.empty() ? "" : ",") + std::to_string(number);
  }
  return text;
}

std::vector<std::uint32_t> split(const std::string& text) {
  std::vector<std::uint32_t> numbers;
  std::istringstream stream(text);
  for (std::string number; std::getline(stream, number, ',');) {
    numbers.push_back(static_cast<std::uint32_t>(std::stoul(number)));
  }
  return numbers;
}

}  // namespace

int shareOf(Method method) {
  switch (method) {
    case Method::kGetRect:
    case Method::kGetCGRect:
      return 2000;
    case Method::kGetIndex:
      return 1800;
    case Method::kGetScale:
      return 1200;
    case Method::kDisplayIDForWindow:
    case Method::kGetName:
      return 1000;
    case Method::kICCTagExists:
      return 400;
    case Method::kQV02Read:
      return 300;
    case Method::kGetProfilePath:
      return 150;
    case Method::kSetObject:
      return 100;
    case Method::kListDisplayProfiles:
    case Method::kGetAssociatedProfilePathsArray:
      return 15;
    case Method::kSetProfile:
      return 10;
    case Method::kListAllInstalledProfiles:
    case Method::kGetInstalledProfilePathsArray:
      return 5;
  }
  return 0;
}

std::vector<std::string> wordsOf(const Plan& plan) {
  return {"seconds=" + std::to_string(plan.seconds),
          "rate=" + std::to_string(plan.rate),
          "profiles=" + std::to_string(plan.profiles),
          "folder=" + plan.folder,
          "pipe=" + plan.pipe,
          "outputs=" + joined(plan.outputs),
          "others=" + joined(plan.others)};
}

Plan planOf(const std::vector<std::string>& words) {
  std::map<std::string, std::string> values;
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) {
      throw std::runtime_error("not NAME=VALUE: " + word);
    }
    values[word.substr(0, equals)] = word.substr(equals + 1);
  }
  Plan plan;
  plan.seconds = std::stod(values.at("seconds"));
  plan.rate = std::stod(values.at("rate"));
  plan.profiles = std::stoul(values.at("profiles"));
  plan.folder = values.at("folder");
  plan.pipe = values.at("pipe");
  plan.outputs = split(values.at("outputs"));
  plan.others = split(values.at("others"));
  return plan;
}

}  // namespace soak
