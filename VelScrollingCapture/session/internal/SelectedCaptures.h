#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include <VelScrollingCapture/core/IImageProvider.h>

namespace ScrollingCapture {

/// Some captures of another provider, which is kept for as long. What is done to them is done
/// there; Clear and Add change the selection only, and Add the other provider as well.
class SelectedCaptures : public IImageProvider {
 public:
  SelectedCaptures(std::shared_ptr<IImageProvider> all, std::vector<std::size_t> indices)
      : all(std::move(all)), indices(std::move(indices)) {}

  std::size_t Count() override { return indices.size(); }
  bool IsEmpty() override { return indices.empty(); }
  std::shared_ptr<cv::Mat> GetImageAt(std::size_t index) override {
    return all->GetImageAt(indices[index]);
  }
  void SetImageAt(std::size_t index, cv::Mat& image) override {
    all->SetImageAt(indices[index], image);
  }
  void Clear() override { indices.clear(); }
  void Add(cv::Mat& image) override {
    indices.push_back(all->Count());
    all->Add(image);
  }
  std::shared_ptr<cv::Mat> GetLastImage() override { return GetImageAt(indices.size() - 1); }

 private:
  const std::shared_ptr<IImageProvider> all;
  std::vector<std::size_t> indices;
};

}  // namespace ScrollingCapture
