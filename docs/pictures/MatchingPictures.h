#pragma once

#include <opencv2/core.hpp>

namespace ScrollingCapture {

/// Two captures (CV_8UC4) side by side with lines between the anchors that vote, and beside them
/// how many vote for each motion along rows. The content's motion is green, what stands still is
/// blue, accidents are red.
cv::Mat DrawVotes(const cv::Mat& earlier, const cv::Mat& later);

/// The later capture with what its cells say about a motion: green ones agree, red ones contradict
/// it, blue ones belong to parts that stand still.
cv::Mat DrawProof(const cv::Mat& earlier, const cv::Mat& later, const cv::Point& motion);

/// The motion that most anchors vote for, standing still aside.
cv::Point MotionOfMostVotes(const cv::Mat& earlier, const cv::Mat& later);

}  // namespace ScrollingCapture
