#include "devhost/tool/terminal/progress.h"

#include <unistd.h>

#include <cstdio>

namespace devhost::tool {
namespace {

constexpr std::size_t kStepsShown = 100;

}  // namespace

Progress::Progress(std::string what) : what_(std::move(what)), on_terminal_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shown_) {
    std::fputs("\r\x1b[K", stderr);
  }
}

void Progress::step() {
  ++count_;
  if (!on_terminal_ || count_ <= kLongList || count_ % kStepsShown != 0) {
    return;
  }
  std::fprintf(stderr, "\r%zu %s", count_, what_.c_str());
  shown_ = true;
}

}  // namespace devhost::tool
