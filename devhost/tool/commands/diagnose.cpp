// Prints the doctor's findings.
#include <algorithm>
#include <iostream>

#include "devhost/language/printable.h"
#include "devhost/tool/commands/commands.h"
#include "devhost/tool/doctor/doctor.h"
#include "devhost/tool/terminal/json.h"

namespace devhost::tool {
namespace {

constexpr const char* kFix = "fix: ";
constexpr std::size_t kGap = 2;

const char* wordOf(Finding::State state) {
  switch (state) {
    case Finding::State::kGood:
      return "ok";
    case Finding::State::kMissing:
      return "missing";
    case Finding::State::kNote:
      break;
  }
  return "note";
}

std::size_t countMissing(const std::vector<Finding>& findings) {
  return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
    return finding.state == Finding::State::kMissing;
  }));
}

std::size_t countMissing(const Diagnosis& diagnosis) {
  std::size_t count = countMissing(diagnosis.findings);
  for (const DisplayFindings& display : diagnosis.displays) {
    count += countMissing(display.findings);
  }
  return count;
}

std::string padded(const std::string& text, std::size_t columns) {
  return text + std::string(columns - std::min(columns, columnsOf(text)) + kGap, ' ');
}

void print(const std::vector<Finding>& findings, const std::string& indent) {
  constexpr std::size_t kState = 7;
  std::size_t widest = 0;
  for (const Finding& finding : findings) {
    widest = std::max(widest, columnsOf(finding.source));
  }
  for (const Finding& finding : findings) {
    std::cout << indent << padded(finding.source, widest) << padded(wordOf(finding.state), kState)
              << printable(finding.text) << '\n';
    if (!finding.remedy.empty()) {
      std::cout << indent << padded("", widest) << padded("", kState) << kFix << printable(finding.remedy) << '\n';
    }
  }
}

void print(const Diagnosis& diagnosis) {
  print(diagnosis.findings, "");
  for (const DisplayFindings& display : diagnosis.displays) {
    std::cout << "\nDisplay " << display.number << ", " << printable(display.name) << '\n';
    print(display.findings, "  ");
  }
  const std::size_t count = countMissing(diagnosis);
  std::cout << '\n';
  if (count == 0) {
    std::cout << "All is well.\n";
  } else {
    std::cout << count << (count == 1 ? " thing is missing.\n" : " things are missing.\n");
  }
}

Json toJson(const std::vector<Finding>& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"source", finding.source},
                    {"state", wordOf(finding.state)},
                    {"text", finding.text},
                    {"remedy", finding.remedy.empty() ? Json(nullptr) : Json(finding.remedy)}});
  }
  return list;
}

void printAsJson(const Diagnosis& diagnosis) {
  Json document = jsonDocument("doctor");
  document["well"] = countMissing(diagnosis) == 0;
  document["findings"] = toJson(diagnosis.findings);
  document["displays"] = Json::array();
  for (const DisplayFindings& display : diagnosis.displays) {
    document["displays"].push_back(
        {{"number", display.number}, {"name", display.name}, {"findings", toJson(display.findings)}});
  }
  printJson(document);
}

}  // namespace

int diagnose(Session& session) {
  const Diagnosis diagnosis = examineDesktop(session.plugin());
  if (session.json()) {
    printAsJson(diagnosis);
  } else {
    print(diagnosis);
  }
  return countMissing(diagnosis) == 0 ? kDone : kNotDone;
}

}  // namespace devhost::tool
