// libdispatch's serial queues, for computers that are not Macs. Any thread may call these functions.
//
// A queue runs its blocks one at a time, in order, on a thread of its own, inside an autorelease pool; the thread ends
// when the queue is idle. A queue lives for the life of the process unless it is released, which the plugin never does.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

typedef struct dispatch_queue_s* dispatch_queue_t;
typedef struct dispatch_queue_attr_s* dispatch_queue_attr_t;
typedef void (^dispatch_block_t)(void);

CF_EXPORT dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attr)
    __attribute__((nothrow));
/// Copies `block` and returns at once. A null queue or block stops the process.
CF_EXPORT void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) __attribute__((nothrow));

CF_EXTERN_C_END
