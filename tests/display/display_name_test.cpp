// Which IOKit service is a display's, and the name that is taken from it.
#include "display/scripted_displays.h"
#include "support/environment_variables.h"

namespace {

using namespace display_tests;
using DisplayServices::device_iterator;
using DisplayServices::DisplayNameForID;
using testing::ElementsAre;

/// Counts what a search does, from its construction on.
class CallsSince {
 public:
  explicit CallsSince(Call call) : call_(call), before_(platform::calls::count(call)) {}
  std::uint64_t count() const { return platform::calls::count(call_) - before_; }

 private:
  Call call_;
  std::uint64_t before_;
};

/// Owns the handle that a search gave.
class FoundService {
 public:
  explicit FoundService(CGDirectDisplayID number) : handle_(device_iterator::IOServicePortFromCGDisplayID(number)) {}
  FoundService(const FoundService&) = delete;
  FoundService& operator=(const FoundService&) = delete;
  ~FoundService() {
    if (handle_ != 0) {
      IOObjectRelease(handle_);
    }
  }
  explicit operator bool() const { return handle_ != 0; }

 private:
  io_service_t handle_;
};

class IOServicePort : public DisplayTest {
 protected:
  /// The only display is number 1; these are the services.
  void setServices(std::vector<DisplayService> services) {
    edit([&](Script& script) {
      script.arrangement.displays.resize(1);
      script.arrangement.services = std::move(services);
    });
  }
  void setNumbers(std::uint32_t vendor, std::uint32_t model, std::uint32_t serial) {
    edit([=](Script& script) {
      script.arrangement.displays[0].vendor = vendor;
      script.arrangement.displays[0].model = model;
      script.arrangement.displays[0].serial = serial;
    });
  }
};

TEST_F(IOServicePort, MatchesVendorModelAndSerial) {
  EXPECT_EQ(text(DisplayNameForID(1)), "Name 1");
  EXPECT_EQ(text(DisplayNameForID(3)), "Name 3");
  EXPECT_TRUE(FoundService(2));
}

TEST_F(IOServicePort, MatchesWithoutSerials) {
  DisplayService bare = service(1, "Bare");
  bare.serial.reset();
  setServices({bare});
  EXPECT_FALSE(FoundService(1));
  setNumbers(1, 2, 0);
  EXPECT_TRUE(FoundService(1));
}

TEST_F(IOServicePort, NeedsEachOfTheThreeNumbers) {
  setServices({service(1, "One")});
  for (const auto& numbers : std::vector<std::array<std::uint32_t, 3>>{{9, 2, 1}, {1, 9, 1}, {1, 2, 9}}) {
    setNumbers(numbers[0], numbers[1], numbers[2]);
    EXPECT_FALSE(FoundService(1));
  }
  setNumbers(1, 2, 1);
  EXPECT_TRUE(FoundService(1));
}

TEST_F(IOServicePort, ComparesVendorThenModelThenSerial) {
  setServices({service(1, "One")});
  setNumbers(9, 9, 9);
  const CallsSince vendors(Call::CGDisplayVendorNumber);
  const CallsSince models(Call::CGDisplayModelNumber);
  const CallsSince serials(Call::CGDisplaySerialNumber);
  EXPECT_FALSE(FoundService(1));
  EXPECT_EQ(vendors.count(), 1u);
  EXPECT_EQ(models.count(), 0u);
  setNumbers(1, 9, 9);
  EXPECT_FALSE(FoundService(1));
  EXPECT_EQ(models.count(), 1u);
  EXPECT_EQ(serials.count(), 0u);
  setNumbers(1, 2, 9);
  EXPECT_FALSE(FoundService(1));
  EXPECT_EQ(serials.count(), 1u);
}

TEST_F(IOServicePort, ComparesNumbersAs32Bits) {
  DisplayService large = service(1, "Large");
  large.vendor = 0xFFFFFFFE;
  large.product = 0x80000000;
  large.serial = 0xFFFFFFFF;
  setServices({large});
  setNumbers(0xFFFFFFFE, 0x80000000, 0xFFFFFFFF);
  EXPECT_EQ(text(DisplayNameForID(1)), "Large");
}

TEST_F(IOServicePort, SkipsServicesWithoutNumbersOrInformation) {
  DisplayService no_vendor = service(1, "No vendor");
  no_vendor.vendor.reset();
  DisplayService no_product = service(1, "No product");
  no_product.product.reset();
  DisplayService no_info = service(1, "No information");
  no_info.has_info = false;
  setServices({no_vendor, no_product, no_info});
  EXPECT_FALSE(FoundService(1));
  setNumbers(0, 0, 0);
  EXPECT_FALSE(FoundService(1)) << "a missing number is not 0";
  setNumbers(1, 2, 1);
  setServices({no_vendor, no_product, no_info, service(1, "Whole")});
  EXPECT_EQ(text(DisplayNameForID(1)), "Whole");
}

TEST_F(IOServicePort, IsTheFirstOfTwoEqualServices) {
  setServices({service(1, "First"), service(1, "Second")});
  EXPECT_EQ(text(DisplayNameForID(1)), "First");
}

TEST_F(IOServicePort, IsFoundAmong64Services) {
  std::vector<DisplayService> services;
  for (std::uint32_t serial = 1; serial <= 64; ++serial) {
    services.push_back(service(100 + serial, "Other"));
  }
  services.back() = service(1, "Last");
  setServices(services);
  const CallsSince infos(Call::IODisplayCreateInfoDictionary);
  const CallsSince releases(Call::IOObjectRelease);
  EXPECT_EQ(text(DisplayNameForID(1)), "Last");
  EXPECT_EQ(infos.count(), 64u + 1u) << "one per service visited, and one for the name";
  EXPECT_EQ(releases.count(), 2u) << "the iterator and the match; services that do not match stay";
}

TEST_F(IOServicePort, IsNoneAmong64OtherServices) {
  std::vector<DisplayService> services;
  for (std::uint32_t serial = 1; serial <= 64; ++serial) {
    services.push_back(service(100 + serial, "Other"));
  }
  setServices(services);
  const CallsSince releases(Call::IOObjectRelease);
  EXPECT_FALSE(FoundService(1));
  EXPECT_EQ(releases.count(), 1u) << "the iterator only";
}

TEST_F(IOServicePort, IsNoneWithoutServices) {
  setServices({});
  EXPECT_FALSE(FoundService(1));
}

TEST_F(IOServicePort, IsNoneWhenACallFails) {
  for (const Call call :
       {Call::IOServiceMatching, Call::IOServiceGetMatchingServices, Call::IOIteratorNext,
        Call::IODisplayCreateInfoDictionary, Call::CFDictionaryGetValueIfPresent, Call::CFNumberGetValue}) {
    SCOPED_TRACE(platform::calls::name(call));
    fail(call);
    EXPECT_FALSE(FoundService(1));
    EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
    platform::calls::removeAllHooks();
  }
}

TEST_F(IOServicePort, IsNoneWhenAnErrorComesWithTheServices) {
  platform::calls::setHook(Call::IOServiceGetMatchingServices,
                           [](std::uint64_t) { return Fault{.late_error = KERN_FAILURE}; });
  EXPECT_FALSE(FoundService(1));
  EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
}

TEST_F(IOServicePort, IsNoneWithUnreadableNumbers) {
  setNumbers(0, 0, 0);
  fail(Call::CFNumberGetValue);
  EXPECT_FALSE(FoundService(1));
}

TEST_F(IOServicePort, IsNoneForDisplay0AndDisconnectedDisplays) {
  EXPECT_FALSE(FoundService(0));
  EXPECT_FALSE(FoundService(99));
}

using DisplayName = IOServicePort;

TEST_F(DisplayName, IsUnknownForDisplay0AndDisconnectedDisplays) {
  EXPECT_EQ(text(DisplayNameForID(0)), "UNKNOWN");
  EXPECT_EQ(text(DisplayNameForID(99)), "UNKNOWN");
}

TEST_F(DisplayName, IsUnknownForAnotherSerialWithoutAQuery) {
  setServices({service(7, "Other")});
  const CallsSince walks(Call::ColorSyncIterateDeviceProfiles);
  EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
  EXPECT_EQ(walks.count(), 0u);
}

TEST_F(DisplayName, IsUnknownWithoutProductNamesWithoutAQuery) {
  DisplayService none = service(1, "");
  none.product_names.reset();
  DisplayService empty = service(1, "");
  empty.product_names->clear();
  const CallsSince queues(Call::dispatch_queue_create);
  setServices({none});
  EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
  setServices({empty});
  EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
  EXPECT_EQ(queues.count(), 0u);
}

TEST_F(DisplayName, EmptyInIoKitComesFromColorSync) {
  setServices({service(1, "")});
  EXPECT_EQ(text(DisplayNameForID(1)), "ColorSync 1");
}

TEST_F(DisplayName, FromColorSyncLeaksTheUuid) {
  setServices({service(1, "")});
  const auto uuid = makeUuid(1);
  const CFIndex before = CFGetRetainCount(uuid.get());
  EXPECT_EQ(text(DisplayNameForID(1)), "ColorSync 1");
  waitForWalks(1);
  EXPECT_EQ(CFGetRetainCount(uuid.get()), before + 1);
}

TEST_F(DisplayName, EmptyInIoKitIsUnknownAtColorSyncsLimit) {
  setServices({service(1, "")});
  edit([](Script& script) { script.device_profiles.clear(); });
  waitInNoTime([this] { waitForWalks(1); });
  EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
  EXPECT_THAT(limits(), ElementsAre(std::chrono::seconds(10)));
}

TEST_F(DisplayName, EmptyInIoKitIsUnknownWithoutUuid) {
  setServices({service(1, "")});
  edit([](Script& script) { script.arrangement.displays[0].uuid.reset(); });
  const CallsSince queues(Call::dispatch_queue_create);
  EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
  EXPECT_EQ(queues.count(), 0u);
}

TEST_F(DisplayName, IsTheNameInThePreferredLanguage) {
  DisplayService several = service(1, "");
  several.product_names = {{{"fr", "Écran"}, {"en", "Screen"}, {"ja", "画面"}}};
  setServices({several});
  for (const auto& [language, name] : several.product_names.value()) {
    const auto preferred = support::userLanguage({{"LANGUAGE", language}});
    EXPECT_EQ(text(DisplayNameForID(1)), name);
  }
}

TEST_F(DisplayName, KeepsItsBytes) {
  setServices({service(1, "Écran “27″” 画面")});
  EXPECT_EQ(text(DisplayNameForID(1)), "Écran “27″” 画面");
}

TEST_F(DisplayName, OutlivesTheService) {
  const CFStringRef name = DisplayNameForID(1);
  edit([](Script& script) { script = {}; });
  EXPECT_EQ(text(name), "Name 1");
}

TEST_F(DisplayName, IsUnknownWithoutInformationAfterTheMatch) {
  fail(Call::IODisplayCreateInfoDictionary, 2);
  const CallsSince releases(Call::IOObjectRelease);
  EXPECT_EQ(text(DisplayNameForID(1)), "UNKNOWN");
  EXPECT_EQ(releases.count(), 2u) << "the iterator and the service";
}

TEST_F(DisplayName, IsNotCached) {
  const CallsSince searches(Call::IOServiceGetMatchingServices);
  EXPECT_EQ(text(DisplayNameForID(1)), "Name 1");
  edit([](Script& script) { script.arrangement.services[0] = service(1, "Renamed"); });
  EXPECT_EQ(text(DisplayNameForID(1)), "Renamed");
  EXPECT_EQ(searches.count(), 2u);
}

}  // namespace
