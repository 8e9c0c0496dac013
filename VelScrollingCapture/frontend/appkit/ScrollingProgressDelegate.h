#pragma once

#import <Foundation/Foundation.h>

/// The host's side of a final stitch: hears how far it is, and can stop it.
///
/// During translation detection the messages come from worker threads, one at a time; all others
/// come from the thread that sent stitchAndReturnFinalImage. A delegate must not raise exceptions.
@protocol ScrollingProgressDelegate <NSObject>

/// Tells the progress of the stitch in percent, 0 to 100.
- (void)setCurrentProgress:(int)progress;

/// Asked after each setCurrentProgress:. NO stops the stitch.
- (BOOL)continueScrolling;

@end
