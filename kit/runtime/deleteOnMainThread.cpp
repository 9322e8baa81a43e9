#include "platform/dispatch.h"
#include "platform/runtime/NSObject.h"

void runtime_detail::deleteOnMainThread(void (*destroy)(void*), void* object) {
    if (dispatch_is_main_thread())
        destroy(object);
    else
        dispatch_async(dispatch_get_main_queue(), [destroy, object] { destroy(object); });
}
