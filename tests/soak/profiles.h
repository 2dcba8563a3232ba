// The profile files that the soak writes, and what is in them. One thread writes; any may read what was written.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "soak/record.h"

namespace soak {

/// What lists of installed profiles are compared by: the soak's own files in their order, and the computer's, in any.
struct ListDigest {
  std::size_t own = 0;
  std::size_t others = 0;
  std::string text;
  friend bool operator==(const ListDigest&, const ListDigest&) = default;
};

/// One line of a list: a name, which may be empty, and a path.
struct Listed {
  std::string name;
  std::string path;
};

class Profiles {
 public:
  /// `folder` is one of those in which profiles are installed.
  Profiles(std::string folder, std::size_t count) : folder_(std::move(folder)), count_(count) {}

  std::size_t count() const { return count_; }
  std::string path(std::size_t file) const;
  /// Each its own; by name the files are in another order than by path.
  std::string name(std::size_t file) const;
  /// What its QV02 tag holds; empty for a file without one.
  std::string document(std::size_t file) const;

  /// Writes all but the extra file.
  void writeAll() const;
  /// One more file appears, or goes away, at once.
  void setExtra(bool present) const;

  /// What the listings by path, with names, and by name, without, must be.
  ListDigest expectedEvents(bool with_extra) const;
  ListDigest expectedArray(bool with_extra) const;
  /// What a listing was; names count where there are any.
  ListDigest digestOf(const std::vector<Listed>& list) const;

 private:
  std::string extraPath() const;
  std::vector<Listed> own(bool with_extra) const;
  std::vector<Listed> others() const;

  std::string folder_;
  std::size_t count_;
};

}  // namespace soak
