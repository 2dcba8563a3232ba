#include "docs/markdown.h"

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

constexpr const char* kFence = "```";
constexpr const char* kIndentation = "    ";

class Parser {
 public:
  explicit Parser(Document& document) : document_(document) {}

  void take(const std::string& line) {
    ++line_;
    if (line.starts_with(kFence)) {
      takeFence(line.substr(3));
    } else if (in_fence_) {
      block().lines.push_back(line);
    } else {
      takeOutsideFence(line);
    }
    after_blank_ = line.empty();
  }

  bool inFence() const { return in_fence_; }

 private:
  Block& block() { return document_.blocks.back(); }

  void begin(const std::string& language, std::size_t first_line) {
    document_.blocks.push_back(
        {language, document_.headings.empty() ? std::string() : document_.headings.back(), first_line, {}});
  }

  void takeFence(const std::string& language) {
    if (!in_fence_) {
      begin(language, line_ + 1);
    }
    in_fence_ = !in_fence_;
    in_indented_ = false;
  }

  void takeOutsideFence(const std::string& line) {
    const bool indented = line.starts_with(kIndentation);
    in_indented_ = indented && (in_indented_ || after_blank_);
    if (in_indented_) {
      if (after_blank_) {
        begin({}, line_);
      }
      block().lines.push_back(line.substr(std::string(kIndentation).size()));
      return;
    }
    if (line.starts_with("#")) {
      document_.headings.push_back(line.substr(std::min(line.find_first_not_of("# "), line.size())));
    }
    document_.prose.push_back({line, line_});
    static const std::regex kSpan("`([^`]+)`");
    static const std::regex kLink(R"(\]\(([^)\s]+)\))");
    collect(line, kSpan, document_.code_spans);
    collect(line, kLink, document_.links);
  }

  void collect(const std::string& line, const std::regex& pattern, std::vector<Located>& found) const {
    for (std::sregex_iterator match(line.begin(), line.end(), pattern); match != std::sregex_iterator(); ++match) {
      found.push_back({(*match)[1], line_});
    }
  }

  Document& document_;
  std::size_t line_ = 0;
  bool in_fence_ = false;
  bool in_indented_ = false;
  bool after_blank_ = true;
};

}  // namespace

Document parseMarkdown(const std::string& name, const std::string& text) {
  Document document;
  document.name = name;
  Parser parser(document);
  for (const std::string& line : splitLines(text)) {
    parser.take(line);
  }
  if (parser.inFence()) {
    throw std::runtime_error(name + ": a block without an end");
  }
  return document;
}

std::vector<Document> readDocuments(const std::string& project) {
  std::vector<std::string> names;
  for (const char* const folder : {"", "docs/"}) {
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(project) / folder)) {
      if (entry.path().extension() == ".md") {
        names.push_back(folder + entry.path().filename().string());
      }
    }
  }
  std::sort(names.begin(), names.end());
  std::vector<Document> documents(names.size());
  std::transform(names.begin(), names.end(), documents.begin(), [&](const std::string& name) {
    return parseMarkdown(name, readFile(std::filesystem::path(project) / name));
  });
  return documents;
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

}  // namespace docs_test
