// The profile files that the soak writes, and what lists of installed profiles must contain. One thread writes; any may
// read what was written.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace soak {

/// One line of a list: a name, which may be empty, and a path.
struct Listed {
  std::string name;
  std::string path;
};

class Profiles {
 public:
  /// `folder` is one in which profiles are installed.
  Profiles(std::string folder, std::size_t count) : folder_(std::move(folder)), count_(count) {}

  std::size_t count() const { return count_; }
  std::string path(std::size_t file) const;
  /// Unique; the order by name differs from the order by path.
  std::string name(std::size_t file) const;
  /// The content of the file's QV02 tag; empty for a file without one.
  std::string document(std::size_t file) const;

  /// Writes all but the extra file.
  void writeAll() const;
  /// Adds or removes one more file, atomically.
  void setExtra(bool present) const;

  /// What a list is compared by: the soak's files in order, the computer's in any order.
  std::string digestOf(const std::vector<Listed>& list) const;
  /// The digest of the list by path, with names.
  std::string expectedEvents(bool with_extra) const;
  /// The digest of the list by name, without names.
  std::string expectedArray(bool with_extra) const;

 private:
  std::string extraPath() const { return folder_ + "/zzz.icc"; }
  std::vector<Listed> own(bool with_extra) const;

  std::string folder_;
  std::size_t count_;
};

}  // namespace soak
