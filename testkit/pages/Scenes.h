#pragma once

#include <string>
#include <vector>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace ScrollingCapture::Testing {

/// Drawn pages (CV_8UC4), the same for the same seed, and what windows show of them.

inline cv::Scalar AnyInk(cv::RNG& random) {
  return {static_cast<double>(random.uniform(0, 110)), static_cast<double>(random.uniform(0, 110)),
          static_cast<double>(random.uniform(0, 110)), 255};
}

inline std::string AnyWord(cv::RNG& random) {
  std::string word(static_cast<std::size_t>(random.uniform(2, 10)), ' ');
  for (char& letter : word) {
    letter = static_cast<char>(random.uniform('a', 'z' + 1));
  }
  return word;
}

inline void DrawText(cv::Mat& page, const std::string& text, const cv::Point& baseline,
                     const cv::Scalar& ink, double scale = 0.5) {
  cv::putText(page, text, baseline, cv::FONT_HERSHEY_SIMPLEX, scale, ink, 1, cv::LINE_AA);
}

/// Paragraphs and headings.
inline cv::Mat DrawArticle(const cv::Size& size, std::uint64_t seed) {
  cv::Mat page(size, CV_8UC4, cv::Scalar::all(255));
  cv::RNG random(seed);
  for (int row = 24; row < size.height; row += random.uniform(0, 8) == 0 ? 46 : 22) {
    std::string line;
    const int words = random.uniform(0, 12) == 0 ? 2 : size.width / 60;
    for (int word = 0; word < words; ++word) {
      line += AnyWord(random) + ' ';
    }
    DrawText(page, line, {20, row}, AnyInk(random));
  }
  return page;
}

/// Smooth shades with fine detail, as a photo has.
inline cv::Mat DrawPhoto(const cv::Size& size, std::uint64_t seed) {
  cv::RNG random(seed);
  cv::Mat photo(size, CV_8UC3, cv::Scalar::all(0));
  for (const int detail : {4, 16, 64}) {
    cv::Mat layer(size.height / detail + 2, size.width / detail + 2, CV_8UC3);
    random.fill(layer, cv::RNG::UNIFORM, 0, 85);
    cv::resize(layer, layer, size, 0, 0, cv::INTER_CUBIC);
    photo += layer;
  }
  cv::cvtColor(photo, photo, cv::COLOR_RGB2RGBA);
  return photo;
}

/// A log whose rows differ in a few digits only.
inline cv::Mat DrawLog(const cv::Size& size, std::uint64_t seed) {
  constexpr int RowHeight = 24;
  cv::Mat page(size, CV_8UC4, cv::Scalar::all(255));
  cv::RNG random(seed);
  for (int row = 0; row * RowHeight < size.height; ++row) {
    const int y = row * RowHeight;
    DrawText(page, std::to_string(10000 + row), {10, y + 17}, {60, 60, 60, 255}, 0.45);
    DrawText(page, "INFO request handled", {60, y + 17}, {20, 20, 20, 255}, 0.45);
    DrawText(page, std::to_string(random.uniform(100, 999)) + " ms", {230, y + 17},
             {60, 60, 60, 255}, 0.45);
    cv::line(page, {0, y + RowHeight - 1}, {size.width, y + RowHeight - 1}, {220, 220, 220, 255});
  }
  return page;
}

/// Rows that are all the same.
inline cv::Mat DrawEqualRows(const cv::Size& size, int rowHeight) {
  cv::Mat page(size, CV_8UC4, cv::Scalar::all(255));
  for (int y = 0; y < size.height; y += rowHeight) {
    DrawText(page, "one row is like the other", {12, y + rowHeight - 8}, {20, 20, 20, 255});
    cv::line(page, {0, y}, {size.width, y}, {200, 200, 200, 255});
  }
  return page;
}

/// A bar with a few words, to be laid over captures.
inline cv::Mat DrawBar(const cv::Size& size, std::uint64_t seed) {
  cv::Mat bar(size, CV_8UC4, cv::Scalar(225, 230, 240, 255));
  cv::RNG random(seed);
  for (int x = 12; x < size.width - 60; x += random.uniform(90, 180)) {
    DrawText(bar, AnyWord(random), {x, size.height / 2 + 5}, {40, 40, 80, 255});
  }
  return bar;
}

inline void Lay(const cv::Mat& part, cv::Mat& capture, const cv::Point& corner) {
  part.copyTo(capture(cv::Rect(corner, part.size())));
}

/// What a window of that size shows at a place of the page.
inline cv::Mat Window(const cv::Mat& page, const cv::Size& size, const cv::Point& place) {
  return page(cv::Rect(place, size)).clone();
}

/// Each channel of each pixel but the alpha is one level higher, lower, or as it was.
inline cv::Mat WithNoise(const cv::Mat& capture, std::uint64_t seed) {
  cv::RNG random(seed);
  cv::Mat noise(capture.size(), CV_16SC4);
  random.fill(noise, cv::RNG::UNIFORM, -1, 2);
  cv::Mat noisy;
  cv::add(capture, noise, noisy, cv::noArray(), CV_8U);
  std::vector<cv::Mat> channels;
  cv::split(noisy, channels);
  channels[3] = 255;
  cv::merge(channels, noisy);
  return noisy;
}

}  // namespace ScrollingCapture::Testing
