#include "devhost/runtime/objects.h"

#include "devhost/calling/native_call.h"
#include "devhost/runtime/host.h"

namespace devhost {
Object::Object(Host& host, std::shared_ptr<Handles> handles, std::string class_name)
    : Counted(std::move(handles), kKind), host_(host), class_name_(std::move(class_name)) {}

Object::~Object() = default;

void Object::addMethod(std::string_view declaration, Handler handler) {
  Declaration parsed = parseDeclaration(declaration);
  const std::string signature = parsed.signature();
  methods_[signature] = std::make_unique<NativeMethod>(host_, std::move(parsed), std::move(handler));
}

void* Object::methodAddress(const Declaration& declaration) {
  const auto found = methods_.find(declaration.signature());
  return found == methods_.end() ? nullptr : found->second->address();
}

std::string Object::describe() const { return "object of class " + class_name_; }

}  // namespace devhost
