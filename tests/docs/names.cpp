#include "docs/names.h"

#include <algorithm>
#include <filesystem>
#include <functional>
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

std::string textOf(const fs::path& folder, const std::function<bool(const fs::path&)>& wanted) {
  std::string text;
  for (auto entry = fs::recursive_directory_iterator(folder); entry != fs::recursive_directory_iterator(); ++entry) {
    if (entry->is_directory() && isIgnored(entry->path())) {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file() && wanted(entry->path())) {
      text += readFile(entry->path());
    }
  }
  return text;
}

/// The words up to a comment or a redirection.
std::vector<std::string> wordsOf(const std::string& command) {
  std::istringstream stream(command);
  std::vector<std::string> words;
  for (std::string word; stream >> word && word != "#" && word != "|" && word != ">";) {
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

/// A word in capitals stands for the reader's own.
bool isPlaceholder(const std::string& word) {
  return std::none_of(word.begin(), word.end(), [](unsigned char c) { return std::islower(c) != 0; }) ||
         word.starts_with("FILE");
}

bool isTool(const std::string& word) { return word == "./run" || word.ends_with("ostrevin-host"); }

bool existsInProject(const fs::path& path) {
  const fs::path full = kProject / path;
  const std::string name = full.filename();
  const std::size_t star = name.find('*');
  const std::string beginning = star == std::string::npos ? name + "." : name.substr(0, star);
  return fs::exists(full) ||
         (fs::is_directory(full.parent_path()) &&
          std::any_of(fs::directory_iterator(full.parent_path()), fs::directory_iterator(),
                      [&](const auto& entry) { return entry.path().filename().string().starts_with(beginning); }));
}

}  // namespace

Names::Names()
    : presets_(readFile(kProject / "CMakePresets.json")),
      build_files_(textOf(
          kProject,
          [](const fs::path& path) { return path.filename() == "CMakeLists.txt" || path.extension() == ".cmake"; })),
      test_files_(textOf(kProject / "tests", [](const fs::path&) { return true; })) {
  for (const auto& entry : fs::directory_iterator(kProject)) {
    if (entry.is_directory() && !isIgnored(entry.path())) {
      folders_.push_back(entry.path().filename());
    }
  }
}

std::vector<std::string> Names::missingIn(const std::string& command) {
  static const std::regex kBuilt(R"(build/([\w-]+)/bin/([\w-]+))");
  const std::vector<std::string> words = wordsOf(command);
  const auto tool = std::find_if(words.begin(), words.end(), isTool);
  if (tool != words.end()) {
    return missingToolWords({tool + 1, words.end()});
  }
  std::vector<std::string> missing = missingPathsIn(command);
  const auto expect = [&](bool exists, const std::string& what) {
    if (!exists) {
      missing.push_back(what);
    }
  };
  const auto expectPreset = [&](const std::string& name) {
    expect(presets_.find("\"name\": \"" + name + "\"") != std::string::npos, "the preset " + name);
  };
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    const std::string value = i + 1 < words.size() ? words[i + 1] : std::string();
    std::smatch match;
    if (word.starts_with("./")) {
      expect(existsInProject(word), "the program " + word);
    } else if (std::regex_match(word, match, kBuilt)) {
      expectPreset(match[1]);
      expect(hasWord(build_files_, match[2]), "the target " + match[2].str());
    } else if (word.starts_with("PRESET=")) {
      expectPreset(word.substr(7));
    } else if (word == "--preset") {
      expectPreset(value);
    } else if (word == "--target" || word == "-L") {
      expect(hasWord(build_files_, value), (word == "-L" ? "the label " : "the target ") + value);
    } else if (word == "-R") {  // the beginning of a name is enough
      expect(test_files_.find(value) != std::string::npos, "a test named " + value);
    }
  }
  return missing;
}

std::vector<std::string> Names::missingToolWords(const std::vector<std::string>& words) {
  static const std::regex kOption("--?[a-z].*");
  std::vector<std::string> missing;
  std::string command;
  for (std::size_t i = 0; i < words.size() && words[i] != "--" && command != "call"; ++i) {
    const std::string& word = words[i];
    if (std::regex_match(word, kOption)) {
      if (!hasWord(help({}), word) && !hasWord(help(command), word)) {
        missing.push_back("the option " + word);
      }
      i += word == "--desktop" || word == "--plugin" ? 1 : 0;
    } else if (command.empty() && !isPlaceholder(word)) {
      command = word;
      if (!hasWord(help({}), word)) {
        missing.push_back("the command " + word);
        break;
      }
    }
  }
  return missing;
}

const std::string& Names::help(const std::string& command) {
  const auto known = help_.find(command);
  return known != help_.end()
             ? known->second
             : help_[command] = joinLines(session_.run({"ostrevin-host " + command + " --help"}).at(0).printed);
}

std::vector<std::string> Names::missingPathsIn(const std::string& text) const {
  static const std::regex kPath(R"((^|[^\w./*-])(\.?[a-z_]+/[\w./*-]*))");
  std::vector<std::string> missing;
  for (std::sregex_iterator match(text.begin(), text.end(), kPath); match != std::sregex_iterator(); ++match) {
    std::string path = (*match)[2];
    path.erase(path.find_last_not_of(".-") + 1);
    const std::string folder = path.substr(0, path.find('/'));
    if (std::find(folders_.begin(), folders_.end(), folder) != folders_.end() && !existsInProject(path)) {
      missing.push_back(path);
    }
  }
  return missing;
}

}  // namespace docs_test
