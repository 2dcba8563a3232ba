// The soak: all fifteen methods of the built plugin, a thousand calls a second, on a live desktop that keeps changing.
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "soak/disturber.h"
#include "soak/judge.h"

namespace soak {
namespace {

constexpr const char* kUsage =
    "soak [--minutes N | --seconds N] [--rate CALLS] [--profiles N] [--any-rate]\n"
    "Calls the plugin on a live desktop of its own that keeps changing, and checks every result. Defaults: 10 "
    "minutes,\n"
    "1000 calls a second, 10000 profiles. Fails on a wrong result, memory or descriptors beyond the budget, or "
    "(without\n"
    "--any-rate) a lower rate.\n";

struct Options {
  double seconds = 600;
  double rate = 1000;  ///< calls a second
  std::size_t profiles = 10000;
  bool any_rate = false;
};

Options parseOptions(const std::vector<std::string>& words) {
  Options options;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--any-rate") {
      options.any_rate = true;
      continue;
    }
    if (i + 1 == words.size()) {
      throw std::runtime_error(kUsage);
    }
    const double value = std::stod(words[i + 1]);
    if (words[i] == "--minutes") {
      options.seconds = 60 * value;
    } else if (words[i] == "--seconds") {
      options.seconds = value;
    } else if (words[i] == "--rate") {
      options.rate = value;
    } else if (words[i] == "--profiles") {
      options.profiles = static_cast<std::size_t>(value);
    } else {
      throw std::runtime_error(kUsage);
    }
    ++i;
  }
  return options;
}

// --- the process's resources

constexpr double kMiB = 1024.0 * 1024.0;
/// Caches and lists of ten thousand profiles are larger at one moment than at another.
constexpr double kAllocatedTolerance = 8;  // MiB
/// Memory that was freed and not returned to the system, of every thread that there was.
constexpr double kResidentTolerance = 48;  // MiB
constexpr std::size_t kDescriptorTolerance = 8;

struct Resources {
  double resident = 0;   ///< MiB
  double allocated = 0;  ///< MiB that malloc has given out, of all arenas
  std::size_t descriptors = 0;
};

Resources measure() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  const struct mallinfo2 info = mallinfo2();
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return {static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / kMiB,
          static_cast<double>(info.uordblks + info.hblkhd) / kMiB,
          static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)))};
}

/// Prints the gain since `before` and the budget, given the bytes that the calls keep on purpose; true when it is kept.
bool reportResources(const Resources& before, const Resources& after, std::size_t kept_bytes) {
  const double kept = static_cast<double>(kept_bytes) / kMiB;
  std::printf("allocated: %.1f MiB before, %.1f after; limit %.1f, of which %.1f kept on purpose\n", before.allocated,
              after.allocated, before.allocated + kept + kAllocatedTolerance, kept);
  std::printf("resident: %.1f MiB before, %.1f after; limit %.1f\n", before.resident, after.resident,
              before.resident + kept + kResidentTolerance);
  std::printf("descriptors: %zu before, %zu after; limit %zu\n", before.descriptors, after.descriptors,
              before.descriptors + kDescriptorTolerance);
  const bool few_descriptors = after.descriptors <= before.descriptors + kDescriptorTolerance;
#ifdef OSTREVIN_SANITIZED
  std::printf("memory is not checked: a sanitizer manages it\n");
  return few_descriptors;
#else
  return few_descriptors && after.allocated <= before.allocated + kept + kAllocatedTolerance &&
         after.resident <= before.resident + kept + kResidentTolerance;
#endif
}

// --- the run

/// Passes calls to the judge as soon as every state that they may have seen is known.
class Queue {
 public:
  explicit Queue(World& world) : world_(world), judge_(world) {}

  void add(Call call) {
    calls_.push_back(std::move(call));
    while (!calls_.empty() && world_.timeline.isKnownUntil(calls_.front().end)) {
      judge_.judge(calls_.front());
      calls_.pop_front();
    }
  }
  /// For the calls that are left when no more changes come.
  const Judge& finish() {
    for (const Call& call : std::exchange(calls_, {})) {
      judge_.judge(call);
    }
    return judge_;
  }

 private:
  World& world_;
  Judge judge_;
  std::deque<Call> calls_;
};

struct SetAtEnd {
  std::atomic<bool>& flag;
  ~SetAtEnd() { flag = true; }
};

void printMethods(const Judge& judge) {
  std::printf("%-32s %9s %6s %14s\n", "Method", "calls", "wrong", "slowest, ms");
  for (std::size_t i = 0; i < kMethodCount; ++i) {
    const Tally& tally = judge.tallies().at(i);
    std::printf("%-32s %9zu %6zu %14.3f\n", kMethods[i].name, tally.calls, tally.wrong,
                std::chrono::duration<double, std::milli>(tally.slowest).count());
  }
}

void printChanges(const Disturber::Counts& counts, const Judge& judge) {
  std::printf("%zu displays at most, %zu at least\n", counts.most, counts.fewest);
  std::printf("changes: %zu of outputs, %zu of defined monitors, %zu of files, %zu restarts of colord\n",
              counts.outputs, counts.monitors, counts.files, counts.restarts);
  std::printf("%zu calls were made during a change; %zu timed out although colord ran\n", judge.duringChanges(),
              judge.timedOut());
  std::printf("wrong results: %zu\n", judge.wrong());
  for (const std::string& complaint : judge.complaints()) {
    std::printf("  %s\n", complaint.c_str());
  }
  for (const std::string& output : counts.not_restored) {
    std::printf("  not restored: %s\n", output.c_str());
  }
}

/// True when every result is right, resources are within the budget and the rate is reached.
bool soak(const Options& options) {
  constexpr double kRestartEvery = 20;  // seconds, or a third of a shorter soak
  using Seconds = std::chrono::duration<double>;
  const auto duration = [](double seconds) { return std::chrono::duration_cast<Clock::duration>(Seconds(seconds)); };
  Disturber disturber(options.profiles);
  Caller caller(disturber.world());
  Queue queue(disturber.world());
  for (Call& call : caller.prepare()) {
    queue.add(std::move(call));
  }

  const Resources before = measure();
  const Time start = Clock::now();
  const auto calls = static_cast<std::size_t>(options.seconds * options.rate);
  std::size_t kept = 0;
  std::atomic<bool> over = false;
  auto changes = std::async(std::launch::async,
                            [&] { disturber.run(duration(std::min(kRestartEvery, options.seconds / 3)), over); });
  {
    const SetAtEnd end{over};
    for (std::size_t i = 0; i < calls; ++i) {
      // A slow call is made up for at full speed.
      std::this_thread::sleep_until(start + duration(static_cast<double>(i) / options.rate));
      Call call = caller.makeCall();
      kept += call.facts().kept;
      queue.add(std::move(call));
    }
  }
  const double seconds = Seconds(Clock::now() - start).count();
  changes.get();
  const Judge& judge = queue.finish();
  caller.checkHost();

  printMethods(judge);
  printChanges(disturber.counts(), judge);
  const double rate = static_cast<double>(calls) / seconds;
  std::printf("%zu calls in %.1f seconds: %.0f a second, with %zu profiles\n", calls, seconds, rate, options.profiles);
  const bool within_budget = reportResources(before, measure(), kept);
  return judge.wrong() == 0 && disturber.counts().not_restored.empty() && within_budget &&
         (options.any_rate || rate >= 0.99 * options.rate);
}

}  // namespace
}  // namespace soak

int main(int count, char** words) {
  try {
    return soak::soak(soak::parseOptions({words + 1, words + count})) ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::cerr << "soak: " << error.what() << std::endl;
    return EXIT_FAILURE;
  }
}
