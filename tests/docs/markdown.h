// What a Markdown document holds, as far as tests look at it: headings, blocks of code, spans of code, links. Any
// thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace docs_test {

struct Block {
  std::string language;            ///< what the fence says, such as "sh"; empty for none, and for an indented block
  std::string heading;             ///< the heading that it stands under
  std::size_t line = 0;            ///< the line in the document of the first line below, from 1
  std::vector<std::string> lines;  ///< without the fence or the indentation
};

/// A text with the line in the document that it begins in, from 1.
struct Located {
  std::string text;
  std::size_t line = 0;
};

struct Document {
  std::string name;  ///< its path from the top of the project
  std::vector<std::string> headings;
  std::vector<Block> blocks;
  std::vector<Located> code_spans;  ///< what stands between single backticks
  std::vector<Located> links;       ///< where links and pictures lead to
  std::vector<Located> prose;       ///< the lines outside blocks

  /// "docs/methods.md:12"
  std::string place(std::size_t line) const { return name + ":" + std::to_string(line); }
};

/// Throws std::runtime_error for a fence that does not end.
Document parseMarkdown(const std::string& name, const std::string& text);

/// README.md and its like at the top of the project, and those in docs/, by name.
std::vector<Document> readDocuments(const std::string& project);

/// The fragment by which a link leads to a heading: lower case, blanks as "-", without punctuation.
std::string fragmentOf(const std::string& heading);

/// The file's bytes. Throws std::runtime_error when it cannot be read.
std::string readFile(const std::string& path);
std::vector<std::string> splitLines(const std::string& text);

}  // namespace docs_test
