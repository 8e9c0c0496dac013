#include <QScrollBar>
#include <QSignalSpy>
#include <QWheelEvent>
#include <cstdint>

#include <desktop/picture/PictureView.h>
#include <desktop/support/Pixels.h>
#include <gtest/gtest.h>
#include <testkit/MatrixTesting.h>

#include "GivenPicture.h"
#include "Waiting.h"

namespace ScrollingCapture::Desktop {
namespace {

class PictureViewTest : public testing::Test {
 protected:
  PictureViewTest() {
    view.resize(500, 400);
    view.setFrameShape(QFrame::NoFrame);
    view.show();
  }

  QImage Shown() { return view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32); }

  /// As a user gets it: with scroll bars, and pixels in their own size.
  void ShowInItsOwnSize(const cv::Mat& picture) {
    view.setPicture(RecordedFrom(picture));
    view.showActualSize();
    QApplication::processEvents();
  }

  /// Waits until the view shows a picture from a pixel on.
  bool ShowsFrom(const QPoint& corner) {
    const QImage whole = ImageOf(pixels).convertToFormat(QImage::Format_RGB32);
    return WaitUntil([&] { return Shown() == whole.copy(QRect(corner, Shown().size())); });
  }

  void TurnWheel(int notches, Qt::KeyboardModifiers keys) {
    const QPointF place(100, 50);
    QWheelEvent event(place, place, {}, {0, 120 * notches}, Qt::NoButton, keys, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(view.viewport(), &event);
  }

  PictureView view;
  const cv::Mat pixels = Testing::NoiseCapture({1200, 1500}, 5);
};

TEST_F(PictureViewTest, ShowsThePicturesOwnPixels) {
  ShowInItsOwnSize(pixels);
  view.horizontalScrollBar()->setValue(0);
  view.verticalScrollBar()->setValue(0);
  EXPECT_EQ(view.zoom(), 1);
  EXPECT_TRUE(ShowsFrom({0, 0}));
}

TEST_F(PictureViewTest, ScrollsToTheLastPixel) {
  ShowInItsOwnSize(pixels);
  view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum());
  view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
  const QSize size = view.viewport()->size();
  EXPECT_TRUE(ShowsFrom({1200 - size.width(), 1500 - size.height()}));
}

TEST_F(PictureViewTest, ShowsTheWholeWidthAtFirst) {
  view.setPicture(RecordedFrom(pixels));
  EXPECT_EQ(view.horizontalScrollBar()->maximum(), 0);
  EXPECT_GT(view.verticalScrollBar()->maximum(), 0);
  EXPECT_LT(view.zoom(), 0.5);
  EXPECT_GT(view.zoom(), 0.35);
}

TEST_F(PictureViewTest, ShowsTheWholePictureAlsoWhenItsSizeChanges) {
  view.setPicture(RecordedFrom(pixels));
  view.fitWhole();
  EXPECT_NEAR(view.zoom(), 400.0 / 1500, 1e-6);
  view.resize(500, 200);
  EXPECT_TRUE(WaitUntil([&] { return std::abs(view.zoom() - 200.0 / 1500) < 1e-6; }));
  EXPECT_EQ(view.verticalScrollBar()->maximum(), 0);
}

TEST_F(PictureViewTest, ShowsASmallPictureInItsOwnSizeInTheMiddle) {
  const cv::Mat small = Testing::NoiseCapture({100, 60}, 6);
  view.setPicture(RecordedFrom(small));
  view.fitWhole();
  EXPECT_EQ(view.zoom(), 1);
  const QImage expected = ImageOf(small).convertToFormat(QImage::Format_RGB32);
  EXPECT_TRUE(WaitUntil([&] { return Shown().copy(200, 170, 100, 60) == expected; }));
}

TEST_F(PictureViewTest, ZoomsByTheWheelAroundThePointer) {
  ShowInItsOwnSize(pixels);
  view.horizontalScrollBar()->setValue(300);
  view.verticalScrollBar()->setValue(400);
  TurnWheel(2, Qt::ControlModifier);
  EXPECT_NEAR(view.zoom(), 1.25 * 1.25, 1e-6);
  EXPECT_NEAR((view.horizontalScrollBar()->value() + 100) / view.zoom(), 400, 1);
  EXPECT_NEAR((view.verticalScrollBar()->value() + 50) / view.zoom(), 450, 1);
}

TEST_F(PictureViewTest, ScrollsByTheWheel) {
  ShowInItsOwnSize(pixels);
  view.verticalScrollBar()->setValue(0);
  TurnWheel(-1, Qt::NoModifier);
  EXPECT_EQ(view.zoom(), 1);
  EXPECT_GT(view.verticalScrollBar()->value(), 0);
}

TEST_F(PictureViewTest, IsMovedByTheLeftButton) {
  ShowInItsOwnSize(pixels);
  view.verticalScrollBar()->setValue(300);
  QTest::mousePress(view.viewport(), Qt::LeftButton, {}, {100, 100});
  QMouseEvent move(QEvent::MouseMove, QPointF(100, 60), Qt::NoButton, Qt::LeftButton, {});
  QApplication::sendEvent(view.viewport(), &move);
  QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, {100, 60});
  EXPECT_EQ(view.verticalScrollBar()->value(), 340);
}

TEST_F(PictureViewTest, KeepsZoomWithinBounds) {
  view.setPicture(RecordedFrom(pixels));
  view.setZoom(1e9);
  EXPECT_EQ(view.zoom(), 8);
  view.setZoom(1e-9);
  EXPECT_EQ(view.zoom(), 1.0 / 4096);
}

TEST_F(PictureViewTest, ShowsTheEndOfAPictureThatNoMemoryHolds) {
  const auto endless = std::make_shared<EndlessPicture>();
  view.setPicture(RecordedAs(endless));
  view.showActualSize();
  view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
  EXPECT_TRUE(WaitUntil([&] { return Shown().pixelColor(10, 10) == QColor(Qt::white); }));
  constexpr std::int64_t PixelsOfTile = std::int64_t{Tile::Side} * Tile::Side;
  EXPECT_LE(endless->largestArea, 8 * PixelsOfTile);
}

TEST_F(PictureViewTest, TellsWhatCannotBeShownAndDoesNotTryForever) {
  QSignalSpy failed(&view, &PictureView::failed);
  view.setPicture(RecordedAs(std::make_shared<LostPicture>()));
  ASSERT_TRUE(WaitUntil([&] { return failed.count() == 1; }));
  EXPECT_EQ(failed[0][0].toString(), "The captures are lost");
  view.viewport()->update();
  QTest::qWait(100);
  EXPECT_EQ(failed.count(), 1);
}

TEST_F(PictureViewTest, ShowsAnotherPictureInItsPlace) {
  view.setPicture(RecordedFrom(cv::Mat(300, 400, CV_8UC4, cv::Scalar(255, 0, 0, 255))));
  EXPECT_TRUE(WaitUntil([&] { return Shown().pixelColor(250, 200) == QColor(Qt::red); }));
  view.setPicture(RecordedFrom(cv::Mat(300, 400, CV_8UC4, cv::Scalar(0, 0, 255, 255))));
  EXPECT_TRUE(WaitUntil([&] { return Shown().pixelColor(250, 200) == QColor(Qt::blue); }));
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
