// Calls across the binary boundary, by a declaration: from the host to a plugin's function, and from a plugin to a
// method of a host object. One thread at a time.
#pragma once

#include <ffi.h>

#include <vector>

#include "devhost/calling/call_result.h"
#include "devhost/language/value.h"
#include "devhost/runtime/objects.h"

namespace devhost {

/// A declaration's native signature.
class NativeSignature {
 public:
  /// With `for_object`, the object comes first, as in methods of objects.
  NativeSignature(const Declaration& declaration, bool for_object);
  NativeSignature(const NativeSignature&) = delete;
  NativeSignature& operator=(const NativeSignature&) = delete;

  ffi_cif& interface() { return interface_; }

 private:
  std::vector<ffi_type*> types_;
  ffi_cif interface_;
};

/// Calls `function` as the declaration says, with the host made current, an autorelease pool around it, and every
/// by-reference parameter in an 8-byte slot of its own. `arguments` are either one for each parameter, or one for each
/// parameter that is not by reference; slots without an argument begin as initialValue. What a slot holds afterwards,
/// and the result, belong to the host. Throws ValueError for wrong arguments, and whatever the function throws.
CallResult callFunction(Host& host, const Declaration& declaration, NativeSignature& signature, const void* function,
                        const Values& arguments);

/// A method of a host object with an address that a plugin can call.
class NativeMethod {
 public:
  NativeMethod(Host& host, Declaration declaration, Handler handler);
  ~NativeMethod();
  NativeMethod(const NativeMethod&) = delete;
  NativeMethod& operator=(const NativeMethod&) = delete;

  void* address() { return address_; }

 private:
  static void enter(ffi_cif* interface, void* result, void** arguments, void* self);
  void run(void* result, void** arguments);
  Value invoke(void** arguments);

  Host& host_;
  Declaration declaration_;
  Handler handler_;
  NativeSignature signature_;
  void* address_ = nullptr;
  ffi_closure* closure_;
};

}  // namespace devhost
