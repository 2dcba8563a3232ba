// libffi, which is part of macOS, for a build without an SDK: what devhost/calling uses, with the layouts of Apple's
// libffi.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned long ffi_arg;

typedef struct _ffi_type {
  size_t size;
  unsigned short alignment;
  unsigned short type;
  struct _ffi_type** elements;
} ffi_type;

extern ffi_type ffi_type_void, ffi_type_pointer, ffi_type_float, ffi_type_double;
extern ffi_type ffi_type_uint8, ffi_type_uint16, ffi_type_uint32, ffi_type_uint64;
extern ffi_type ffi_type_sint8, ffi_type_sint16, ffi_type_sint32, ffi_type_sint64;

typedef enum { FFI_OK = 0 } ffi_status;
#ifdef __arm64__
typedef enum { FFI_DEFAULT_ABI = 1 } ffi_abi;
#else
typedef enum { FFI_DEFAULT_ABI = 2 } ffi_abi;
#endif

typedef struct {
  ffi_abi abi;
  unsigned nargs;
  ffi_type** arg_types;
  ffi_type* rtype;
  unsigned bytes;
  unsigned flags;
#ifdef __arm64__
  unsigned aarch64_nfixedargs;
#endif
} ffi_cif;

typedef struct {
#ifdef __arm64__
  void* trampoline[2];
#else
  void* trampoline[3];
#endif
  ffi_cif* cif;
  void (*fun)(ffi_cif*, void*, void**, void*);
  void* user_data;
} ffi_closure;

ffi_status ffi_prep_cif(ffi_cif* cif, ffi_abi abi, unsigned nargs, ffi_type* rtype, ffi_type** arg_types);
void ffi_call(ffi_cif* cif, void (*function)(void), void* result, void** arguments);

#pragma clang attribute push(__attribute__((availability(macosx, introduced = 10.15))), apply_to = function)
void* ffi_closure_alloc(size_t size, void** code);
void ffi_closure_free(void* closure);
ffi_status ffi_prep_closure_loc(ffi_closure* closure, ffi_cif* cif, void (*function)(ffi_cif*, void*, void**, void*),
                                void* user_data, void* code);
#pragma clang attribute pop

#ifdef __cplusplus
}
#endif
