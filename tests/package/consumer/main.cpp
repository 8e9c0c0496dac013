// Stitches two captures of a drawn page with nothing but what the installed package offers.
#include <cstdlib>
#include <iostream>

#include <VelScrollingCapture/ScrollingCapture.h>

int main() {
  cv::Mat page(260, 160, CV_8UC4);
  cv::randu(page, cv::Scalar(0, 0, 0, 255), cv::Scalar(256, 256, 256, 256));

  StitcherAdapter adapter;
  for (const int scroll : {0, 60}) {
    cv::Mat capture = page.rowRange(scroll, scroll + 200).clone();
    adapter.Add(capture);
  }
  if (!adapter.stitchImages()) {
    return EXIT_FAILURE;
  }
  const cv::Mat stitched = adapter.getResult();
  const bool same = stitched.size() == page.size() && cv::norm(stitched, page, cv::NORM_INF) == 0.0;
  std::cout << "stitched " << stitched.size() << (same ? " as drawn" : " wrongly") << "\n";
  return same ? EXIT_SUCCESS : EXIT_FAILURE;
}
