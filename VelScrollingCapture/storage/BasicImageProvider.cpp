#include <VelScrollingCapture/storage/BasicImageProvider.h>

namespace ScrollingCapture {

size_t BasicImageProvider::Count() { return images.size(); }

bool BasicImageProvider::IsEmpty() { return images.empty(); }

std::shared_ptr<cv::Mat> BasicImageProvider::GetImageAt(size_t index) { return images.at(index); }

void BasicImageProvider::SetImageAt(size_t index, cv::Mat& image) {
  images[index] = std::make_shared<cv::Mat>(image);
}

void BasicImageProvider::Clear() {
  while (!images.empty()) {
    images.pop_back();
  }
}

void BasicImageProvider::Add(cv::Mat& image) { images.push_back(std::make_shared<cv::Mat>(image)); }

std::shared_ptr<cv::Mat> BasicImageProvider::GetLastImage() { return images.back(); }

}  // namespace ScrollingCapture
