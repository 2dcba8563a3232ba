#include "docs/markdown.h"

#include <fnmatch.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace docs_test {
namespace {

constexpr const char* kEllipsis = "…";

void collect(const Located& line, const std::regex& pattern, std::vector<Located>& found) {
  for (std::sregex_iterator match(line.text.begin(), line.text.end(), pattern), end; match != end; ++match) {
    found.push_back({(*match)[1], line.line});
  }
}

/// A pattern of fnmatch for a line of shown output.
std::string patternOf(const std::string& line) {
  const std::string escaped = std::regex_replace(line, std::regex(R"([*?\[\\])"), R"(\$&)");
  return std::regex_replace(escaped, std::regex(kEllipsis), "*");
}

std::string withoutTrailingBlanks(const std::string& line) {
  return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

using Line = std::vector<std::string>::const_iterator;

bool linesMatch(Line shown, Line shown_end, Line printed, Line printed_end) {
  if (shown == shown_end) {
    return printed == printed_end;
  }
  if (*shown == kEllipsis && linesMatch(shown + 1, shown_end, printed, printed_end)) {
    return true;
  }
  if (printed == printed_end) {
    return false;
  }
  if (*shown == kEllipsis) {
    return linesMatch(shown, shown_end, printed + 1, printed_end);
  }
  return fnmatch(patternOf(withoutTrailingBlanks(*shown)).c_str(), withoutTrailingBlanks(*printed).c_str(), 0) == 0 &&
         linesMatch(shown + 1, shown_end, printed + 1, printed_end);
}

}  // namespace

Document parseMarkdown(const std::string& name, const std::string& text) {
  static const std::regex kCode("`([^`]+)`");
  static const std::regex kLink(R"(\]\(([^)\s]+)\))");
  Document document{name, {}, {}, {}, {}, {}};
  bool in_block = false;
  std::size_t number = 0;
  for (const std::string& line : splitLines(text)) {
    ++number;
    if (line.starts_with("```")) {
      in_block = !in_block;
      if (in_block) {
        const std::string heading = document.headings.empty() ? "" : document.headings.back();
        document.blocks.push_back({line.substr(3), heading, number + 1, {}});
      }
    } else if (in_block) {
      document.blocks.back().lines.push_back(line);
    } else {
      if (line.starts_with("#")) {
        document.headings.push_back(line.substr(std::min(line.find_first_not_of("# "), line.size())));
      }
      document.prose.push_back({line, number});
      collect(document.prose.back(), kCode, document.code);
      collect(document.prose.back(), kLink, document.links);
    }
  }
  if (in_block) {
    throw std::runtime_error(name + ": a block without an end");
  }
  return document;
}

std::vector<Document> readDocuments(const std::string& project) {
  std::vector<Document> documents;
  for (const char* const folder : {"", "docs/"}) {
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(project) / folder)) {
      if (entry.path().extension() == ".md") {
        documents.push_back(parseMarkdown(folder + entry.path().filename().string(), readFile(entry.path())));
      }
    }
  }
  std::sort(documents.begin(), documents.end(), [](const Document& a, const Document& b) { return a.name < b.name; });
  return documents;
}

std::vector<Command> commandsOf(const Block& block) {
  std::vector<Command> commands;
  for (std::size_t i = 0; block.language == "console" && i < block.lines.size(); ++i) {
    const std::string& line = block.lines[i];
    if (line.starts_with("$ ")) {
      commands.push_back({line.substr(2), block.line + i, {}});
    } else if (commands.empty()) {
      throw std::runtime_error("line " + std::to_string(block.line) + ": output without a command");
    } else {
      commands.back().output.push_back(line);
    }
  }
  return commands;
}

bool showsOutput(const std::vector<std::string>& shown, const std::vector<std::string>& printed) {
  return linesMatch(shown.begin(), shown.end(), printed.begin(), printed.end());
}

std::string fragmentOf(const std::string& heading) {
  std::string fragment;
  for (const char character : heading) {
    const auto byte = static_cast<unsigned char>(character);
    if (std::isalnum(byte) != 0 || character == '-' || character == '_') {
      fragment += static_cast<char>(std::tolower(byte));
    } else if (character == ' ') {
      fragment += '-';
    }
  }
  return fragment;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error("cannot read " + path);
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> splitLines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::string joinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + '\n';
  }
  return text;
}

}  // namespace docs_test
