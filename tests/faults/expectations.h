// The documented answers while something is wrong.
#pragma once

#include <set>
#include <string>

#include "faults/scene.h"

namespace faults {

/// What the question is answered while `what` (a framework call, a key of a dictionary, a message, an entry of the
/// host) answers `answer`. It is the right answer unless the table says otherwise.
std::string expected(const std::string& what, const std::string& answer, const Question& question);

/// Whether the answer asks for so much memory that it depends on the computer whether there is any; if there is none,
/// the question fails.
bool asksForMuchMemory(const std::string& what, const std::string& answer);

/// What the question is answered when it fails altogether.
std::string failureValue(const Question& question);

/// Whether the answer is one of those that may come when only one of several calls answered `answer`: the right one,
/// the failure value, the one that comes when they all did, or, of lists and names, one that is made of the pieces of
/// these.
bool mayComeOnce(const std::string& got, const std::string& what, const std::string& answer, const Question& question);

/// The names in the table's first column, so that none can be there in vain.
std::set<std::string> expectedSubjects();

}  // namespace faults
