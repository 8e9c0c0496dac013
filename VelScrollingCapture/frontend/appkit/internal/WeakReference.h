#pragma once

#include <mutex>

#import <Foundation/Foundation.h>

namespace ScrollingCapture::AppKit {

/// A reference that does not keep its object alive. Any thread may load and store.
///
/// Turns nil when the object goes away, where the runtime has weak references. Where it has none
/// (the runtime of GCC), the reference has to be cleared before the object goes away.
class __attribute__((visibility("hidden"))) WeakReference {
 public:
  WeakReference() = default;
  WeakReference(const WeakReference&) = delete;
  WeakReference& operator=(const WeakReference&) = delete;
  ~WeakReference();

  /// The object, autoreleased, or nil.
  id Load();

  void Store(id newObject);

 private:
  std::mutex mutex;
  id object = nil;
};

}  // namespace ScrollingCapture::AppKit
