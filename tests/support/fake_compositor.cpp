#include "support/fake_compositor.h"

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-server.h>
#include <xdg-output-unstable-v1-server-protocol.h>

#include <algorithm>
#include <future>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "support/temporary_folder.h"

namespace support {
namespace {

struct Shown {
  FakeOutput output;
  wl_global* global = nullptr;
  std::vector<wl_resource*> outputs;
  std::vector<wl_resource*> areas;
};

void sendOutput(wl_resource* resource, const FakeOutput& output) {
  const int version = wl_resource_get_version(resource);
  wl_output_send_geometry(resource, output.x, output.y, 600, 340, WL_OUTPUT_SUBPIXEL_UNKNOWN, output.make.c_str(),
                          output.model.c_str(), output.transform);
  wl_output_send_mode(resource, WL_OUTPUT_MODE_CURRENT, output.mode_width, output.mode_height, 60000);
  if (version >= WL_OUTPUT_SCALE_SINCE_VERSION) {
    wl_output_send_scale(resource, output.scale);
  }
  if (version >= WL_OUTPUT_NAME_SINCE_VERSION) {
    wl_output_send_name(resource, output.name.c_str());
    wl_output_send_description(resource, output.description.c_str());
  }
  if (version >= WL_OUTPUT_DONE_SINCE_VERSION && output.done) {
    wl_output_send_done(resource);
  }
}

void sendArea(wl_resource* resource, const FakeOutput& output) {
  const int version = wl_resource_get_version(resource);
  zxdg_output_v1_send_logical_position(resource, output.logical_x, output.logical_y);
  zxdg_output_v1_send_logical_size(resource, output.logical_width, output.logical_height);
  if (version >= ZXDG_OUTPUT_V1_NAME_SINCE_VERSION) {
    zxdg_output_v1_send_name(resource, output.name.c_str());
    zxdg_output_v1_send_description(resource, output.description.c_str());
  }
  if (version < 3 && output.done) {
    zxdg_output_v1_send_done(resource);
  }
}

void destroyResource(wl_client*, wl_resource* resource) { wl_resource_destroy(resource); }

void send(const Shown& shown) {
  for (wl_resource* const resource : shown.areas) {
    sendArea(resource, shown.output);
  }
  for (wl_resource* const resource : shown.outputs) {
    sendOutput(resource, shown.output);
  }
}

void forgetOutput(wl_resource* resource) {
  if (auto* const shown = static_cast<Shown*>(wl_resource_get_user_data(resource))) {
    std::erase(shown->outputs, resource);
  }
}

void forgetArea(wl_resource* resource) {
  if (auto* const shown = static_cast<Shown*>(wl_resource_get_user_data(resource))) {
    std::erase(shown->areas, resource);
  }
}

void bindOutput(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
  static const struct wl_output_interface kRequests = {.release = destroyResource};
  auto* const shown = static_cast<Shown*>(data);
  wl_resource* const resource = wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
  wl_resource_set_implementation(resource, &kRequests, shown, forgetOutput);
  shown->outputs.push_back(resource);
  sendOutput(resource, shown->output);
}

void getArea(wl_client* client, wl_resource* manager, std::uint32_t id, wl_resource* output) {
  static const struct zxdg_output_v1_interface kRequests = {.destroy = destroyResource};
  auto* const shown = static_cast<Shown*>(wl_resource_get_user_data(output));
  wl_resource* const resource =
      wl_resource_create(client, &zxdg_output_v1_interface, wl_resource_get_version(manager), id);
  wl_resource_set_implementation(resource, &kRequests, shown, forgetArea);
  shown->areas.push_back(resource);
  sendArea(resource, shown->output);
  if (wl_resource_get_version(output) >= WL_OUTPUT_DONE_SINCE_VERSION && shown->output.done) {
    wl_output_send_done(output);
  }
}

void bindManager(wl_client* client, void*, std::uint32_t version, std::uint32_t id) {
  static const struct zxdg_output_manager_v1_interface kRequests = {.destroy = destroyResource,
                                                                    .get_xdg_output = getArea};
  wl_resource* const resource =
      wl_resource_create(client, &zxdg_output_manager_v1_interface, static_cast<int>(version), id);
  wl_resource_set_implementation(resource, &kRequests, nullptr, nullptr);
}

}  // namespace

struct FakeCompositor::State {
  explicit State(const FakeGlobals& fake) : output_version(fake.output_version), wake(eventfd(0, EFD_CLOEXEC)) {
    wl_display_add_socket_fd(display, listen());
    wake_source = wl_event_loop_add_fd(wl_display_get_event_loop(display), wake, WL_EVENT_READABLE, onWake, this);
    for (const FakeOutput& output : fake.outputs) {
      show(output);
    }
    if (fake.manager_version != 0) {
      wl_global_create(display, &zxdg_output_manager_v1_interface, static_cast<int>(fake.manager_version), nullptr,
                       bindManager);
    }
  }
  ~State() {
    wl_event_source_remove(wake_source);
    wl_display_destroy_clients(display);
    wl_display_destroy(display);
    close(wake);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  int listen() const;

  void show(const FakeOutput& output) {
    auto shown = std::make_unique<Shown>();
    shown->output = output;
    shown->global =
        wl_global_create(display, &wl_output_interface, static_cast<int>(output_version), shown.get(), bindOutput);
    outputs.push_back(std::move(shown));
  }

  static int onWake(int fd, std::uint32_t, void* data) {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t ignored = read(fd, &count, sizeof count);
    auto& state = *static_cast<State*>(data);
    std::vector<std::packaged_task<void()>> tasks;
    {
      const std::lock_guard lock(state.mutex);
      tasks.swap(state.tasks);
    }
    for (auto& task : tasks) {
      task();
    }
    return 0;
  }

  TemporaryFolder folder;
  wl_display* display = wl_display_create();
  const std::uint32_t output_version;
  const int wake;
  wl_event_source* wake_source = nullptr;
  std::vector<std::unique_ptr<Shown>> outputs;  ///< removed ones are kept for clients that still have objects of them
  std::mutex mutex;
  std::vector<std::packaged_task<void()>> tasks;
  std::thread thread;
};

int FakeCompositor::State::listen() const {
  const std::string path = folder.path("wayland");
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof(address.sun_path) - 1);
  if (bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || ::listen(fd, 64) != 0) {
    throw std::runtime_error("no socket " + path);
  }
  return fd;
}

FakeCompositor::FakeCompositor(const FakeGlobals& globals) : state_(std::make_unique<State>(globals)) {
  state_->thread = std::thread([state = state_.get()] { wl_display_run(state->display); });
}

FakeCompositor::~FakeCompositor() {
  perform([this] { wl_display_terminate(state_->display); });
  state_->thread.join();
}

std::string FakeCompositor::socket() const { return state_->folder.path("wayland"); }

void FakeCompositor::perform(const std::function<void()>& work) {
  std::packaged_task<void()> task(work);
  auto done = task.get_future();
  {
    const std::lock_guard lock(state_->mutex);
    state_->tasks.push_back(std::move(task));
  }
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t ignored = write(state_->wake, &one, sizeof one);
  done.get();
}

void FakeCompositor::describe(std::size_t index, const FakeOutput& output) {
  perform([&] {
    state_->outputs.at(index)->output = output;
    send(*state_->outputs[index]);
  });
}

void FakeCompositor::add(const FakeOutput& output) {
  perform([&] { state_->show(output); });
}

void FakeCompositor::remove(std::size_t index) {
  perform([&] { wl_global_destroy(std::exchange(state_->outputs.at(index)->global, nullptr)); });
}

void FakeCompositor::flood(std::size_t index, int times) {
  perform([&] {
    for (int i = 0; i < times; ++i) {
      send(*state_->outputs.at(index));
    }
  });
}

}  // namespace support
