// The desktop behind the frameworks, filled from the computer's desktop or from a script. Plain data.
//
// A string is UTF-8, a path is a POSIX path, a length is in points. For an absent member (nullopt) the frameworks leave
// the value out, or return null.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform::desktop {

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  friend bool operator==(const Rect&, const Rect&) = default;
};

using Uuid = std::array<std::uint8_t, 16>;

/// An active display. Bounds have their origin at the upper left corner of the main display, y growing downwards.
struct Display {
  std::uint32_t number = 0;
  Rect bounds;
  std::optional<Uuid> uuid;
  std::uint32_t vendor = 0;  ///< EDID's 16-bit packed manufacturer id
  std::uint32_t model = 0;
  std::uint32_t serial = 0;
  std::string connector;           ///< such as "DP-1"; empty if unknown
  std::vector<std::uint8_t> edid;  ///< the monitor's whole EDID; empty without a valid one
};

/// A screen. The frame has its origin at the lower left corner of the main screen, y growing upwards.
struct Screen {
  std::optional<Rect> frame;  ///< absent: an empty element in the list of screens
  double backing_scale = 1;   ///< pixels per point
};

/// A display service with its information dictionary; each absent member is a missing key.
struct DisplayService {
  bool has_info = true;  ///< false: the information dictionary is null
  std::optional<std::uint32_t> vendor;
  std::optional<std::uint32_t> product;
  std::optional<std::uint32_t> serial;
  /// Product names by language code, in the order of the list.
  std::optional<std::vector<std::pair<std::string, std::string>>> product_names;
};

/// The displays at one moment. Immutable once published.
struct Arrangement {
  std::vector<Display> displays;           ///< the main display first
  std::vector<Screen> screens;             ///< in the order of AppKit's list
  std::optional<std::size_t> main_screen;  ///< index into `screens`
  std::vector<DisplayService> services;    ///< in the order of IOKit's list
};

/// One profile of a colour-managed device.
struct DeviceProfile {
  std::optional<std::string> device_class;
  std::optional<Uuid> device_id;
  std::optional<std::string> description;
  std::optional<bool> is_default;
  std::optional<bool> is_current;
  std::optional<std::string> profile_path;
};

/// The device class of displays.
inline constexpr const char* kDisplayDeviceClass = "mntr";

/// Holds an object that a framework makes of an entry, from the first store until the slot's own end. Any thread may
/// call any function, several at once.
class CacheSlot {
 public:
  using Release = void (*)(const void* object);

  CacheSlot() = default;
  CacheSlot(const CacheSlot&) = delete;
  CacheSlot& operator=(const CacheSlot&) = delete;
  ~CacheSlot() {
    if (const void* const object = get()) {
      release_.load(std::memory_order_relaxed)(object);
    }
  }

  /// Borrowed; null before the first store.
  const void* get() const { return object_.load(std::memory_order_acquire); }

  /// Takes over the object, which is not null, or releases it when there is one already; returns the one that stays,
  /// borrowed. `release` is the same function in all calls.
  const void* store(const void* object, Release release) {
    release_.store(release, std::memory_order_relaxed);
    const void* before = nullptr;
    if (object_.compare_exchange_strong(before, object, std::memory_order_acq_rel)) {
      return object;
    }
    release(object);
    return before;
  }

 private:
  std::atomic<const void*> object_ = nullptr;
  std::atomic<Release> release_ = nullptr;
};

struct InstalledProfile {
  std::optional<std::string> profile_class;  ///< the four characters of the class signature, such as "mntr"
  std::optional<std::string> description;
  std::optional<std::string> path;
  /// For what is made of this entry; the same in every walk while the entry is unchanged. Null when the desktop does
  /// not remember it.
  std::shared_ptr<CacheSlot> slot = nullptr;
};

/// A visitor returns false to end the walk.
using DeviceProfileVisitor = std::function<bool(const DeviceProfile&)>;
using InstalledProfileVisitor = std::function<bool(const InstalledProfile&)>;

/// Returns the present displays; never null.
using ArrangementSource = std::function<std::shared_ptr<const Arrangement>()>;

/// Any thread may call any function, several at once. A walk runs its visitor on the calling thread.
class Desktop {
 public:
  virtual ~Desktop() = default;

  /// The present arrangement; never null. Cheap while nothing changes.
  virtual std::shared_ptr<const Arrangement> arrangement() = 0;
  virtual void visitDeviceProfiles(const DeviceProfileVisitor& visit) = 0;
  virtual void visitInstalledProfiles(const InstalledProfileVisitor& visit) = 0;
  /// False when the device is unknown or the file cannot become its profile.
  virtual bool setDeviceProfile(const Uuid& device, const std::string& profile_path) = 0;
};

}  // namespace platform::desktop
