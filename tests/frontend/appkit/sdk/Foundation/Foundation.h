#pragma once

// What the library and its test hosts use of Foundation, declared as macOS declares it.
#import <ApplicationServices/ApplicationServices.h>

typedef bool BOOL;
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;

#define YES __objc_yes
#define NO __objc_no
#ifdef __cplusplus
#define nil nullptr
#else
#define nil ((void*)0)
#endif

static const NSPoint NSZeroPoint = {0, 0};
static const NSRect NSZeroRect = {{0, 0}, {0, 0}};

static inline NSSize NSMakeSize(CGFloat width, CGFloat height) {
  const NSSize size = {width, height};
  return size;
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return CGRectMake(x, y, width, height);
}

@protocol NSObject
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
#if !__has_feature(objc_arc)
- (instancetype)retain;
- (oneway void)release;
- (instancetype)autorelease;
#endif
- (void)dealloc;
@end

@interface NSString : NSObject
+ (instancetype)stringWithUTF8String:(const char*)text;
@end

@interface NSData : NSObject
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
@end

#if !__has_feature(objc_arc)
@interface NSAutoreleasePool : NSObject
- (void)drain;
@end
#endif
