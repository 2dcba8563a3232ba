#include "devhost/calling/module_record.h"

#include <cstring>

namespace devhost {
namespace {

constexpr std::size_t kVersionOffset = 0;
constexpr std::size_t kNameOffset = 8;
constexpr std::size_t kTableOffset = 16;
constexpr std::size_t kCountOffset = 24;
constexpr std::size_t kModuleFurtherOffset = 32;

constexpr std::size_t kFunctionOffset = 0;
constexpr std::size_t kSecondFunctionOffset = 8;
constexpr std::size_t kDeclarationOffset = 16;
constexpr std::size_t kRowFurtherOffset = 24;

constexpr std::size_t kMaxTextSize = 4096;

template <typename T>
T field(const void* record, std::size_t offset) {
  T value;
  std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof value);
  return value;
}

std::string text(const void* record, std::size_t offset, const std::string& what) {
  const auto* const start = field<const char*>(record, offset);
  if (start == nullptr) {
    throw PluginError(what + " is null");
  }
  const std::size_t size = strnlen(start, kMaxTextSize);
  if (size == kMaxTextSize) {
    throw PluginError(what + " has no end within " + std::to_string(kMaxTextSize) + " bytes");
  }
  return {start, size};
}

Method readRow(const void* row, const std::string& place) {
  Method method;
  method.function = field<const void*>(row, kFunctionOffset);
  if (method.function == nullptr) {
    throw PluginError(place + ": the function is null");
  }
  method.second_function = field<const void*>(row, kSecondFunctionOffset);
  method.further = field<decltype(method.further)>(row, kRowFurtherOffset);
  try {
    method.declaration = parseDeclaration(text(row, kDeclarationOffset, place + ": the declaration"));
  } catch (const DeclarationError& error) {
    throw PluginError(place + ": " + error.what());
  }
  return method;
}

}  // namespace

Module readModule(const void* record) {
  if (record == nullptr) {
    throw PluginError("module record: null");
  }
  Module module;
  module.record = record;
  module.version = field<std::int64_t>(record, kVersionOffset);
  module.name = text(record, kNameOffset, "module record: the name");
  module.further = field<decltype(module.further)>(record, kModuleFurtherOffset);

  const std::string place = "module " + module.name;
  const auto* const table = field<const char*>(record, kTableOffset);
  const auto count = field<std::int64_t>(record, kCountOffset);
  if (count < 1 || count > kMaxMethodRows) {
    throw PluginError(place + ": " + std::to_string(count) + " method rows, expected 1 to " +
                      std::to_string(kMaxMethodRows));
  }
  if (table == nullptr) {
    throw PluginError(place + ": the method table is null");
  }
  for (std::int64_t i = 0; i < count; ++i) {
    const void* const row = table + static_cast<std::size_t>(i) * kMethodRowSize;
    module.methods.push_back(readRow(row, place + ", method row " + std::to_string(i + 1)));
  }
  return module;
}

}  // namespace devhost
