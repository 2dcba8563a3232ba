#include "devhost/runtime/strings.h"

#include "devhost/language/printable.h"

namespace devhost {
namespace {

constexpr std::size_t kDescribedBytes = 120;

}  // namespace

String::String(std::shared_ptr<Handles> handles, std::string bytes, std::uint32_t encoding)
    : Counted(std::move(handles), kKind), bytes_(std::move(bytes)), encoding_(encoding) {}

std::string String::describe() const {
  const bool cut = bytes_.size() > kDescribedBytes;
  return "string \"" + printable(std::string_view(bytes_).substr(0, kDescribedBytes)) + (cut ? "...\"" : "\"") + " (" +
         std::to_string(bytes_.size()) + " bytes)";
}

}  // namespace devhost
