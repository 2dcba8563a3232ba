// The texts of --help, for the whole tool and for each command: examples first.
#pragma once

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace devhost::tool {

/// A description of the tool, without the commands and options.
extern const char* const kDescription;
/// The meaning of the exit status.
extern const char* const kExitStatus;

/// Examples of a command by its name, or of the whole tool for "ostrevin-host"; one a line, each with its line end.
std::string examplesOf(const std::string& command);

/// Writes description, examples, usage, arguments, options, commands, and the rest, in this order.
std::shared_ptr<CLI::FormatterBase> makeHelpFormatter();

}  // namespace devhost::tool
