#include "desktop/icc/icc_walk.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>

#include "desktop/icc/icc_profile.h"
#include "desktop/icc/icc_text.h"
#include "desktop/icc/known_folder.h"

namespace platform::desktop {
namespace {

struct ReadProfile {
  Kept kept;
  InstalledProfile profile;
};

bool isUpToDate(int directory, const KnownFile& file) {
  struct stat status {};
  return file.is_kept && fstatat(directory, file.name.c_str(), &status, 0) == 0 && identityOf(status) == file.identity;
}

}  // namespace

void IccWalk::run(const std::vector<std::string>& folders) {
  number_ = cache_.beginWalk();
  for (const std::string& folder : folders) {
    walkTree(folder);
  }
  for (std::size_t i = 0; i < links_.size() && !stopped_; ++i) {
    followLink(std::string(links_[i]));  // its own copy: following may add links
  }
  if (!stopped_) {
    cache_.endWalk(number_);
  }
}

void IccWalk::walkTree(const std::string& root) {
  std::vector<std::string> waiting = {root};
  while (!waiting.empty() && !stopped_) {
    const std::string path = std::move(waiting.back());
    waiting.pop_back();
    walkFolder(path, waiting);
  }
}

void IccWalk::walkFolder(const std::string& path, std::vector<std::string>& waiting) {
  const OpenFolder folder(path);
  if (!folder || !directories_.emplace(folder.identity().device, folder.identity().inode).second) {
    return;
  }
  const std::shared_ptr<const KnownFolder> known = cache_.find(number_, path);
  const bool is_unchanged = known && known->is_kept && known->identity == folder.identity();
  FolderInUse in_use = is_unchanged ? FolderInUse(known) : FolderInUse(folder.read(known.get()));
  const KnownFolder& contents = *in_use.get();
  const std::string prefix = path + '/';
  for (const std::string& name : contents.links) {
    links_.push_back(prefix + name);
  }
  std::for_each(contents.folders.rbegin(), contents.folders.rend(),
                [&](const std::string& name) { waiting.push_back(prefix + name); });
  visitFiles(std::move(in_use), folder.descriptor(), path, prefix);
}

void IccWalk::followLink(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return;
  }
  if (S_ISDIR(status.st_mode)) {
    walkTree(path);
    return;
  }
  for (; gathered_ < met_.size(); ++gathered_) {
    for (const KnownFile& file : met_[gathered_]->files) {
      files_.emplace(file.identity.device, file.identity.inode);
    }
  }
  if (!S_ISREG(status.st_mode) || !isProfileName(path) || files_.contains({status.st_dev, status.st_ino})) {
    return;
  }
  // The file that the link leads to is remembered as a folder of its own, in which it has its whole path for a name.
  if (const std::shared_ptr<const KnownFolder> known = cache_.find(number_, path); known && known->files.size() == 1) {
    visitFiles(FolderInUse(known), AT_FDCWD, path, "");
    return;
  }
  auto alone = std::make_shared<KnownFolder>();
  alone->files.emplace_back().name = path;
  visitFiles(FolderInUse(std::move(alone)), AT_FDCWD, path, "");
}

void IccWalk::visitFiles(FolderInUse folder, int directory, const std::string& path, const std::string& prefix) {
  for (std::size_t i = 0; i < folder.get()->files.size() && !stopped_; ++i) {
    const KnownFile& known = folder.get()->files[i];
    std::shared_ptr<const InstalledProfile> content = known.content;
    if (!isUpToDate(directory, known)) {
      KnownFile& file = folder.change().files[i];
      content = readFile(directory, prefix + file.name, file);
    }
    if (content && !visit_(*content)) {
      stopped_ = true;
    }
  }
  met_.push_back(folder.get());
  if (folder.isChanged()) {
    cache_.store(number_, path, folder.get());
  }
}

/// Reads the file anew, and answers its content also when `file` does not keep it.
std::shared_ptr<const InstalledProfile> IccWalk::readFile(int directory, const std::string& path,
                                                          KnownFile& file) const {
  file.identity = {};
  file.content = nullptr;
  file.is_kept = false;
  const FileTime opened = fileSystemTime();
  const RegularFile open_file(directory, file.name.c_str());
  if (!open_file) {
    return nullptr;
  }
  file.identity = open_file.identity();
  file.is_kept = laterChangesShow(file.identity, opened);
  const auto profile = IccProfile::of(open_file);
  if (!profile) {
    return nullptr;
  }
  const auto read = std::make_shared<ReadProfile>();
  const std::shared_ptr<InstalledProfile> content(read, &read->profile);
  content->profile_class = profile->deviceClass();
  content->path = path;
  if (const auto description = profile->find(iccSignature("desc"))) {
    content->description = readIccText(*profile, *description, language_);
  }
  file.is_kept = file.is_kept && content->description.value_or("").size() <= IccCache::kMaxDescription;
  if (file.is_kept) {
    content->kept = &read->kept;
    file.content = content;
  }
  return content;
}

}  // namespace platform::desktop
