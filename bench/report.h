// How results are shown.
#pragma once

#include <ostream>
#include <string>

#include "results.h"

namespace bench {

/// 86.4 ns, 1.87 µs, 24.3 ms: three digits and the unit that suits.
std::string timeText(double nanoseconds);
/// Two decimals.
std::string ratioText(double ratio);
/// The bar, or "-" where there is none.
std::string barText(double bar);

/// A table for people at a terminal. What falls short has "over" at the end of its line.
void printTable(std::ostream& out, const Results& results);
/// The whole as one JSON document; times are in nanoseconds.
void printJson(std::ostream& out, const Results& results);
/// The whole as Markdown.
std::string markdown(const Results& results);
/// Two diagrams with logarithmic axes: how costs grow with displays and with profiles. On a light background and on a
/// dark one.
std::string plotSvg(const Results& results);

/// Replaces what is between the lines "<!-- measured -->" and "<!-- end -->" of a file. Throws std::runtime_error when
/// the file or the lines are not there.
void replaceMeasured(const std::string& path, const std::string& text);

}  // namespace bench
