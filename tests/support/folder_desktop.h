// A desktop without displays whose installed profiles are those in one folder.
#pragma once

#include <memory>
#include <string>

#include "desktop/icc/icc_folders.h"
#include "desktop/model/desktop.h"

namespace support {

class FolderDesktop final : public platform::desktop::Desktop {
 public:
  explicit FolderDesktop(const std::string& folder) : folders_({folder}) {}
  std::shared_ptr<const platform::desktop::Arrangement> arrangement() override {
    return std::make_shared<const platform::desktop::Arrangement>();
  }
  void visitDeviceProfiles(const platform::desktop::DeviceProfileVisitor&) override {}
  void visitInstalledProfiles(const platform::desktop::InstalledProfileVisitor& visit) override {
    folders_.visit(visit);
  }
  bool setDeviceProfile(const platform::desktop::Uuid&, const std::string&) override { return false; }

 private:
  platform::desktop::IccFolders folders_;
};

}  // namespace support
