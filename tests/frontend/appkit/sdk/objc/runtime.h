#pragma once

#ifdef __cplusplus
extern "C" {
#endif

id objc_loadWeak(id* location);
id objc_storeWeak(id* location, id object);

#ifdef __cplusplus
}  // extern "C"
#endif
