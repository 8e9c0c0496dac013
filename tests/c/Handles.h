#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/OwnedHandle.h>

/// \file
/// The interface for C as tests in C++ like it: matrices as images, answers checked.

namespace ScrollingCapture::Testing {

inline vel_session_settings DefaultSettings() {
  vel_session_settings settings;
  vel_session_settings_init(&settings, sizeof settings);
  return settings;
}

inline Owned<vel_session> MakeSession(const vel_session_settings& settings = DefaultSettings()) {
  vel_session* session = nullptr;
  EXPECT_EQ(vel_session_create(&settings, &session, nullptr, 0), VEL_OK);
  return Owned<vel_session>(session);
}

inline Owned<vel_stitcher> MakeStitcher(const vel_stitcher_settings* settings = nullptr) {
  vel_stitcher* stitcher = nullptr;
  EXPECT_EQ(vel_stitcher_create(settings, &stitcher, nullptr, 0), VEL_OK);
  return Owned<vel_stitcher>(stitcher);
}

/// The pixels of a matrix, which has to live on.
inline vel_source_image SourceOf(const cv::Mat& pixels, vel_pixel_format format = VEL_RGBA,
                                 vel_alpha alpha = VEL_PREMULTIPLIED) {
  return {
      sizeof(vel_source_image), pixels.data, pixels.step, pixels.cols, pixels.rows, format, alpha};
}

inline vel_target_image TargetOf(cv::Mat& pixels, vel_pixel_format format = VEL_RGBA,
                                 vel_alpha alpha = VEL_PREMULTIPLIED) {
  return {
      sizeof(vel_target_image), pixels.data, pixels.step, pixels.cols, pixels.rows, format, alpha};
}

/// Adds a capture, CV_8UC4: red, green, blue, premultiplied alpha.
inline vel_outcome Add(vel_session* session, const cv::Mat& capture,
                       const vel_motion* motion = nullptr) {
  const vel_source_image image = SourceOf(capture);
  vel_outcome outcome;
  vel_outcome_init(&outcome, sizeof outcome);
  EXPECT_EQ(vel_session_add(session, &image, motion, &outcome), VEL_OK);
  return outcome;
}

inline void AddAll(vel_session* session, const std::vector<cv::Mat>& captures) {
  for (const cv::Mat& capture : captures) {
    Add(session, capture);
  }
}

inline Owned<vel_stitched> Stitch(vel_session* session) {
  vel_stitched* stitched = nullptr;
  EXPECT_EQ(vel_session_stitch(session, nullptr, nullptr, &stitched), VEL_OK);
  return Owned<vel_stitched>(stitched);
}

inline Owned<vel_picture> PartOf(vel_stitched* stitched, size_t part = 0) {
  vel_picture* picture = nullptr;
  EXPECT_EQ(vel_stitched_part(stitched, part, &picture), VEL_OK);
  return Owned<vel_picture>(picture);
}

inline cv::Size SizeOf(vel_picture* picture) {
  cv::Size size;
  EXPECT_EQ(vel_picture_size(picture, &size.width, &size.height), VEL_OK);
  return size;
}

/// The whole picture as matrices hold it.
inline cv::Mat Whole(vel_picture* picture) {
  cv::Mat pixels(SizeOf(picture), CV_8UC4);
  const vel_target_image image = TargetOf(pixels);
  EXPECT_EQ(vel_picture_read(picture, 0, 0, &image), VEL_OK);
  return pixels;
}

inline std::string MessageOf(vel_session* handle) {
  std::string text(VEL_MESSAGE_SIZE, '\0');
  EXPECT_EQ(vel_session_message(handle, text.data(), text.size()), VEL_OK);
  text.resize(text.find('\0'));
  return text;
}

inline std::string MessageOf(vel_picture* handle) {
  std::string text(VEL_MESSAGE_SIZE, '\0');
  EXPECT_EQ(vel_picture_message(handle, text.data(), text.size()), VEL_OK);
  text.resize(text.find('\0'));
  return text;
}

/// What a window shows that scrolls down a page of noise by `step` rows.
inline std::vector<cv::Mat> CapturesOf(const cv::Mat& page, int height, int step) {
  std::vector<cv::Mat> captures;
  for (int row = 0; row + height <= page.rows; row += step) {
    captures.push_back(page.rowRange(row, row + height).clone());
  }
  return captures;
}

}  // namespace ScrollingCapture::Testing
