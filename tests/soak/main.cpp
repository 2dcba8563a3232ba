// The soak: all fifteen methods of the built plugin, a thousand calls a second, on a live desktop that does not stand
// still. One process owns the servers, changes them, and judges; another, which it starts, has the plugin and calls it.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

#include "soak/budget.h"
#include "soak/caller.h"
#include "soak/disturber.h"
#include "soak/oracle.h"
#include "support/process.h"

namespace soak {
namespace {

constexpr const char* kCallerOption = "--caller";

constexpr const char* kUsage =
    "soak [--minutes N | --seconds N] [--rate CALLS] [--profiles N] [--any-rate]\n"
    "Calls the plugin on a live desktop of its own that changes meanwhile, and judges every answer. 10 minutes, 1000 "
    "calls "
    "a second and\n10000 profiles unless something else is said. Fails when an answer is wrong, memory is beyond its "
    "budget, or the rate is not reached\n(unless --any-rate).\n";

struct Options {
  Plan plan;
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
      options.plan.seconds = 60 * value;
    } else if (words[i] == "--seconds") {
      options.plan.seconds = value;
    } else if (words[i] == "--rate") {
      options.plan.rate = value;
    } else if (words[i] == "--profiles") {
      options.plan.profiles = static_cast<std::size_t>(value);
    } else {
      throw std::runtime_error(kUsage);
    }
    ++i;
  }
  return options;
}

/// Reads what the caller tells, and has every call judged as soon as enough is known.
class Listener {
 public:
  explicit Listener(World& world) : world_(world), oracle_(world) {}

  void listen(const std::string& pipe) {
    std::ifstream lines(pipe);
    for (std::string line; std::getline(lines, line);) {
      take(line);
      while (!waiting_.empty() && oracle_.canJudge(waiting_.front())) {
        judgeFirst();
      }
    }
    has_ended = true;
  }

  /// What was left when the world had stopped changing.
  void judgeRest() {
    while (!waiting_.empty()) {
      judgeFirst();
    }
  }

  const Oracle& oracle() const { return oracle_; }
  Budget& budget() { return budget_; }

  std::atomic<bool> is_ready = false;
  std::atomic<bool> has_ended = false;
  bool is_done = false;
  Time began;
  Time ended;

 private:
  void take(const std::string& line) {
    if (auto call = parseCall(line)) {
      if (call->method == Method::kSetProfile) {
        world_.noteAssignment(*call);
      }
      if (is_ready) {
        budget_.count(call->method);
      }
      waiting_.push_back(*std::move(call));
    } else if (const auto memory = parseMemory(line)) {
      budget_.measured(*memory);
    } else if (line == kReady) {
      began = Clock::now();
      is_ready = true;
    } else if (line == kDone) {
      ended = Clock::now();
      is_done = true;
    }
  }

  void judgeFirst() {
    oracle_.judge(waiting_.front());
    waiting_.pop_front();
  }

  World& world_;
  Oracle oracle_;
  Budget budget_;
  std::deque<Call> waiting_;
};

/// The process that calls, and the thread that listens to it, while this lives.
class CallingProcess {
 public:
  CallingProcess(const std::vector<std::string>& command, const support::Environment& environment,
                 const std::string& log, std::string pipe, Listener& listener)
      : pipe_(std::move(pipe)),
        process_(command, environment, log),
        thread_([&listener, this] { listener.listen(pipe_); }) {}
  ~CallingProcess() {
    process_.stop();
    // For a listener that still waits for a process that never came to open the pipe.
    close(open(pipe_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    thread_.join();
  }
  CallingProcess(const CallingProcess&) = delete;
  CallingProcess& operator=(const CallingProcess&) = delete;

 private:
  const std::string pipe_;
  support::ChildProcess process_;
  std::thread thread_;
};

/// Until the caller has ended.
void disturb(Disturber& disturber, const Listener& listener, const Plan& plan) {
  constexpr auto kPause = std::chrono::milliseconds(750);
  constexpr double kRestartEvery = 20;  // seconds, or a third of a shorter soak
  const auto restart_interval = std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double>(std::min(kRestartEvery, plan.seconds / 3)));
  Time restart_due = Clock::now() + restart_interval;
  for (std::size_t step = 0; !listener.has_ended; ++step) {
    std::this_thread::sleep_for(kPause);
    if (!listener.is_ready || listener.has_ended) {
      restart_due = Clock::now() + restart_interval;
      continue;
    }
    switch (step % 4) {
      case 0:
      case 2:
        disturber.changeOutput();
        break;
      case 1:
        disturber.changeMonitor();
        break;
      default:
        disturber.changeFiles();
        break;
    }
    if (Clock::now() >= restart_due) {
      disturber.restartColord([&] { return listener.has_ended.load(); });
      restart_due = Clock::now() + restart_interval;
    }
  }
}

void printMethods(const Oracle& oracle) {
  std::printf("%-32s %9s %6s %14s\n", "Method", "calls", "wrong", "slowest, ms");
  for (std::size_t i = 0; i < kMethods; ++i) {
    const auto method = static_cast<Method>(i);
    const Tally& tally = oracle.tally(method);
    std::printf("%-32s %9zu %6zu %14.3f\n", nameOf(method), tally.calls, tally.wrong,
                std::chrono::duration<double, std::milli>(tally.slowest).count());
  }
}

/// True when all is well.
bool report(const Options& options, Listener& listener, const Disturber::Counts& counts) {
  const Oracle& oracle = listener.oracle();
  const double seconds = std::chrono::duration<double>(listener.ended - listener.began).count();
  const double rate = listener.is_done ? static_cast<double>(listener.budget().calls()) / seconds : 0;
  printMethods(oracle);
  std::printf("%zu displays at most, %zu at least; %zu profiles\n", counts.most, counts.fewest, options.plan.profiles);
  std::printf(
      "changed meanwhile: outputs %zu times, defined monitors %zu times, files %zu times; colord restarted %zu times\n",
      counts.outputs, counts.monitors, counts.files, counts.restarts);
  std::printf("%zu calls, %zu of them in %.1f seconds after the preparation: %.0f a second\n", oracle.calls(),
              listener.budget().calls(), seconds, rate);
  std::printf(
      "%zu calls had one right answer, %zu were made while something changed; %zu gave up at their time limit although "
      "colord ran\n",
      oracle.calls() - oracle.duringChanges(), oracle.duringChanges(), oracle.gaveUp());
  const bool within_budget = listener.budget().report();
  std::printf("wrong answers: %zu\n", oracle.wrong());
  for (const std::string& complaint : oracle.complaints()) {
    std::printf("  %s\n", complaint.c_str());
  }
  for (const std::string& output : counts.not_restored) {
    std::printf("  not restored: %s\n", output.c_str());
  }
  const bool fast_enough = options.any_rate || rate >= 0.99 * options.plan.rate;
  if (!listener.is_done) {
    std::printf("the calling process did not come to its end\n");
  }
  return listener.is_done && oracle.wrong() == 0 && counts.not_restored.empty() && within_budget && fast_enough;
}

int soak(const std::string& program, Options options) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  Disturber disturber(options.plan);
  const Plan& plan = disturber.world().plan;
  if (mkfifo(plan.pipe.c_str(), 0600) != 0) {
    throw std::runtime_error("no pipe");
  }
  std::vector<std::string> command = wordsOf(plan);
  command.insert(command.begin(), {program, kCallerOption});
  auto environment = disturber.server().environment();
  environment.push_back("OSTREVIN_DESKTOP=");
  const std::string log = plan.pipe + ".log";
  Listener listener(disturber.world());
  {
    CallingProcess caller(command, environment, log, plan.pipe, listener);
    disturb(disturber, listener, plan);
  }
  listener.judgeRest();
  std::cout << std::ifstream(log).rdbuf();
  std::cout.clear();  // an empty log
  return report(options, listener, disturber.counts()) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int main(std::vector<std::string> words) {
  const std::string program = "/proc/self/exe";
  try {
    if (!words.empty() && words.front() == kCallerOption) {
      words.erase(words.begin());
      Caller(planOf(words)).run();
      return EXIT_SUCCESS;
    }
    return soak(std::filesystem::read_symlink(program), parseOptions(words));
  } catch (const std::exception& error) {
    std::cerr << "soak: " << error.what() << std::endl;
    return EXIT_FAILURE;
  }
}

}  // namespace
}  // namespace soak

int main(int count, char** texts) { return soak::main({texts + 1, texts + count}); }
