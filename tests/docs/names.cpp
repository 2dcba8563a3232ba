#include "docs/names.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

namespace docs_test {
namespace {

namespace fs = std::filesystem;

const fs::path kProject = PROJECT_FOLDER;

bool isIgnored(const fs::path& path) {
  const std::string name = path.filename();
  return name == "build" || (name.starts_with(".") && name != ".ci");
}

void appendTexts(const fs::path& folder, const std::function<bool(const fs::path&)>& wanted, std::string& text) {
  for (auto entry = fs::recursive_directory_iterator(folder); entry != fs::recursive_directory_iterator(); ++entry) {
    if (entry->is_directory() && isIgnored(entry->path())) {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file() && wanted(entry->path())) {
      text += readFile(entry->path());
    }
  }
}

std::vector<std::string> wordsOf(const std::string& command) {
  std::istringstream stream(command.substr(0, command.find(" #")));
  std::vector<std::string> words;
  for (std::string word; stream >> word;) {
    words.push_back(word);
  }
  return words;
}

bool hasWord(const std::string& text, const std::string& word) {
  const auto is_part = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-'; };
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    if ((at == 0 || !is_part(text[at - 1])) && (end == text.size() || !is_part(text[end]))) {
      return true;
    }
  }
  return false;
}

/// A word in capitals stands for something of the reader's.
bool isPlaceholder(const std::string& word) {
  return std::none_of(word.begin(), word.end(),
                      [](char c) { return std::islower(static_cast<unsigned char>(c)) != 0; });
}

bool isTool(const std::string& word) { return word == "./run" || word.ends_with("ostrevin-host"); }

}  // namespace

Names::Names() {
  for (const auto& entry : fs::directory_iterator(kProject)) {
    if (entry.is_directory() && !isIgnored(entry.path())) {
      folders_.push_back(entry.path().filename());
    }
  }
  const auto presets = nlohmann::json::parse(readFile(kProject / "CMakePresets.json"));
  for (const auto& preset : presets.at("configurePresets")) {
    presets_.push_back(preset.at("name"));
  }
  appendTexts(
      kProject,
      [](const fs::path& path) { return path.filename() == "CMakeLists.txt" || path.extension() == ".cmake"; },
      build_files_);
  appendTexts(
      kProject / "tests", [](const fs::path&) { return true; }, test_files_);
}

std::vector<std::string> Names::missingIn(const std::string& command) const {
  static const std::regex kProgram(R"((?:\./|scripts/|\.ci/)[\w-]+)");
  static const std::regex kBuilt(R"(build/([\w-]+)/bin/([\w-]+))");
  std::vector<std::string> missing;
  const auto expect = [&](bool is_there, const std::string& what) {
    if (!is_there) {
      missing.push_back(what);
    }
  };
  const auto is_preset = [&](const std::string& name) {
    return std::find(presets_.begin(), presets_.end(), name) != presets_.end();
  };
  const std::vector<std::string> words = wordsOf(command);
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    const std::string value = i + 1 < words.size() ? words[i + 1] : std::string();
    std::smatch match;
    if (std::regex_match(word, kProgram)) {
      expect(isFileInProject(word), "the program " + word);
    } else if (std::regex_match(word, match, kBuilt)) {
      expect(is_preset(match[1]), "the preset " + match[1].str());
      expect(hasWord(build_files_, match[2]), "the target " + match[2].str());
    } else if (word.starts_with("PRESET=")) {
      expect(is_preset(word.substr(7)), "the preset " + word.substr(7));
    } else if (word == "--preset") {
      expect(is_preset(value), "the preset " + value);
    } else if (word == "--target") {
      expect(hasWord(build_files_, value), "the target " + value);
    } else if (word == "-L") {
      expect(hasWord(build_files_, value), "the label " + value);
    } else if (word == "-R") {
      for (const std::string& part : splitLines(std::regex_replace(value, std::regex("[.*|^$]+"), "\n"))) {
        // A regular expression, so the beginning of a name is enough.
        expect(test_files_.find(part) != std::string::npos, "a test named " + part);
      }
    }
  }
  const auto tool = std::find_if(words.begin(), words.end(), isTool);
  if (tool != words.end()) {
    const auto absent = missingToolWords({tool + 1, words.end()});
    missing.insert(missing.end(), absent.begin(), absent.end());
  }
  return missing;
}

std::vector<std::string> Names::missingToolWords(const std::vector<std::string>& words) const {
  static const std::regex kNegativeNumber(R"(-[\d.]+)");
  std::vector<std::string> missing;
  std::string command;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--" || word == "|" || word == ">" || word == "&&") {
      break;
    }
    const bool has_value = word == "--desktop" || word == "--plugin";
    if (word.starts_with("-") && !std::regex_match(word, kNegativeNumber)) {
      if (!hasWord(help({}), word) && !hasWord(help(command), word)) {
        missing.push_back("the option " + word);
      }
      i += has_value ? 1 : 0;
    } else if (command.empty() && !isPlaceholder(word)) {
      command = word;
      if (!hasWord(help({}), word)) {
        missing.push_back("the command " + word);
        break;
      }
    } else if (command == "call") {
      break;  // arguments of the method
    }
  }
  return missing;
}

const std::string& Names::help(const std::string& command) const {
  const auto known = help_.find(command);
  if (known != help_.end()) {
    return known->second;
  }
  std::vector<std::string> arguments{"--help"};
  if (!command.empty()) {
    arguments.insert(arguments.begin(), command);
  }
  int status = 0;
  return help_[command] = session_.runTool(arguments, status);
}

std::vector<std::string> Names::missingPathsIn(const std::string& text) const {
  static const std::regex kPath(R"((^|[^\w./*-])(\.?[a-z_]+/[\w./*-]*))");
  std::vector<std::string> missing;
  for (std::sregex_iterator match(text.begin(), text.end(), kPath); match != std::sregex_iterator(); ++match) {
    std::string path = (*match)[2];
    path.erase(path.find_last_not_of(".-") + 1);
    const std::string folder = path.substr(0, path.find('/'));
    if (std::find(folders_.begin(), folders_.end(), folder) != folders_.end() && !isInProject(path)) {
      missing.push_back(path);
    }
  }
  return missing;
}

bool Names::isFileInProject(const std::string& path) const { return fs::is_regular_file(kProject / path); }

bool Names::isInProject(const std::string& path) const {
  if (fs::exists(kProject / path)) {
    return true;
  }
  const fs::path full = kProject / path;
  const std::string name = full.filename();
  const std::size_t star = name.find('*');
  const std::string beginning = star == std::string::npos ? name + "." : name.substr(0, star);
  if (!fs::is_directory(full.parent_path())) {
    return false;
  }
  return std::any_of(fs::directory_iterator(full.parent_path()), fs::directory_iterator(),
                     [&](const auto& entry) { return entry.path().filename().string().starts_with(beginning); });
}

}  // namespace docs_test
