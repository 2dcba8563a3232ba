#include "devhost/tool/doctor/doctor.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "devhost/language/printable.h"

namespace devhost::tool {

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

}  // namespace devhost::tool
