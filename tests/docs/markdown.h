// The parts of a Markdown document that tests check. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace docs_test {

/// A text and the line of the document where it begins, from 1.
struct Located {
  std::string text;
  std::size_t line = 0;
};

struct Block {
  std::string language;            ///< of the fence, such as "sh"; may be empty
  std::string heading;             ///< the heading above it
  std::size_t line = 0;            ///< of the first line below, from 1
  std::vector<std::string> lines;  ///< without the fences
};

struct Document {
  std::string name;  ///< its path from the top of the project
  std::vector<std::string> headings;
  std::vector<Block> blocks;
  std::vector<Located> prose;  ///< the lines outside blocks
  std::vector<Located> code;   ///< text between single backticks
  std::vector<Located> links;  ///< targets of links and pictures

  /// "docs/methods.md:12"
  std::string place(std::size_t line) const { return name + ":" + std::to_string(line); }
};

/// A command of a document and the output shown below it.
struct Command {
  std::string text;
  std::size_t line = 0;
  std::vector<std::string> output;
};

/// Throws std::runtime_error for a fence without an end.
Document parseMarkdown(const std::string& name, const std::string& text);

/// The documents at the top of the project and in docs/, by name.
std::vector<Document> readDocuments(const std::string& project);

/// The commands of a `console` block.
std::vector<Command> commandsOf(const Block& block);

/// Whether `printed` is what `shown` shows, except for blanks at the ends of lines: "…" stands for any text within a
/// line, a line "…" for any number of lines.
bool showsOutput(const std::vector<std::string>& shown, const std::vector<std::string>& printed);

/// The fragment of links to a heading: lower case, "-" for blanks, no punctuation.
std::string fragmentOf(const std::string& heading);

/// The file's bytes. Throws std::runtime_error when it cannot be read.
std::string readFile(const std::string& path);
std::vector<std::string> splitLines(const std::string& text);
std::string joinLines(const std::vector<std::string>& lines);

}  // namespace docs_test
