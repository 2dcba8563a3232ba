// The block run-time, for computers that are not Macs (blocks/block_runtime.mm gives the reason).
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// A block that outlives the scope that `block` was written in, with a reference for the caller.
void* _Block_copy(const void* block);
/// Releases a reference; the last one frees the block and releases what it captured.
void _Block_release(const void* block);

#ifdef __cplusplus
}
#endif

#define Block_copy(...) ((__typeof__(__VA_ARGS__))_Block_copy((const void*)(__VA_ARGS__)))
#define Block_release(...) _Block_release((const void*)(__VA_ARGS__))
