#include "devhost/tool/doctor/doctor.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "devhost/language/printable.h"
#include "devhost/tool/commands/commands.h"
#include "devhost/tool/terminal/exit_status.h"
#include "devhost/tool/terminal/json.h"

namespace devhost::tool {
namespace {

constexpr const char* kRemedy = "to mend it: ";
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
      std::cout << indent << padded("", widest) << padded("", kState) << kRemedy << printable(finding.remedy) << '\n';
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

Finding good(std::string source, std::string text) {
  return {Finding::State::kGood, std::move(source), std::move(text), {}};
}

Finding missing(std::string source, std::string text, std::string remedy) {
  return {Finding::State::kMissing, std::move(source), std::move(text), std::move(remedy)};
}

Finding note(std::string source, std::string text) {
  return {Finding::State::kNote, std::move(source), std::move(text), {}};
}

std::string assignCommand(std::uint32_t display) {
  return "ostrevin-host call SetProfile " + std::to_string(display) + " FILE.icc";
}

std::string shellWord(const std::string& text) {
  const auto is_plain = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("/._-+,:@%").find(c) != std::string_view::npos;
  };
  if (!text.empty() && std::all_of(text.begin(), text.end(), is_plain)) {
    return text;
  }
  const bool is_printable = printable(text) == text;
  std::string word = is_printable ? "'" : "$'";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (is_printable) {
      word += c == '\'' ? "'\\''" : std::string(1, c);
    } else if (byte < 0x20 || byte >= 0x7F || c == '\'' || c == '\\') {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\%03o", byte);
      word += escape;
    } else {
      word += c;
    }
  }
  return word + "'";
}

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
