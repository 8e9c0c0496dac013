#pragma once

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

namespace ScrollingCapture::Testing {

/// A test with an autorelease pool around it.
class PoolTest : public testing::Test {
 protected:
  ~PoolTest() override { [pool drain]; }

 private:
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
};

}  // namespace ScrollingCapture::Testing
