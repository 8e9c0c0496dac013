#import <VelScrollingCapture/frontend/appkit/internal/WeakReference.h>

#if defined(__APPLE__)
#import <objc/runtime.h>
#define VEL_RUNTIME_HAS_WEAK_REFERENCES 1
#elif defined(OBJC_CAP_ARC)
#import <objc/objc-arc.h>
#define VEL_RUNTIME_HAS_WEAK_REFERENCES 1
#else
#define VEL_RUNTIME_HAS_WEAK_REFERENCES 0
#endif

namespace ScrollingCapture::AppKit {

WeakReference::~WeakReference() { Store(nil); }

#if VEL_RUNTIME_HAS_WEAK_REFERENCES

id WeakReference::Load() { return objc_loadWeak(&object); }

void WeakReference::Store(id newObject) { objc_storeWeak(&object, newObject); }

#else

id WeakReference::Load() {
  const std::lock_guard<std::mutex> lock(mutex);
  return [[object retain] autorelease];
}

void WeakReference::Store(id newObject) {
  const std::lock_guard<std::mutex> lock(mutex);
  object = newObject;
}

#endif

}  // namespace ScrollingCapture::AppKit
