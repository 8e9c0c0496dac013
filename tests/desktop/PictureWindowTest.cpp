#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDirIterator>
#include <QFileDialog>
#include <QSignalSpy>
#include <QStatusBar>

#include <desktop/picture/PictureWindow.h>
#include <desktop/support/Pixels.h>
#include <gtest/gtest.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <testkit/MatrixTesting.h>
#include <testkit/TemporaryFolder.h>

#include "GivenPicture.h"
#include "Waiting.h"

namespace ScrollingCapture::Desktop {
namespace {

cv::Mat ReadBack(const std::string& path) {
  cv::Mat pixels;
  cv::cvtColor(cv::imread(path, cv::IMREAD_COLOR), pixels, cv::COLOR_BGR2RGBA);
  return pixels;
}

class PictureWindowTest : public testing::Test {
 protected:
  std::unique_ptr<PictureWindow> Open(const std::vector<SharedPicture>& parts) {
    auto window = std::make_unique<PictureWindow>(Recorded{parts, {}},
                                                  [this](QWidget* /*window*/, const QString& loss) {
                                                    questions << loss;
                                                    return answer;
                                                  });
    window->show();
    return window;
  }

  QString PathOf(const char* name) const { return QString::fromStdString(folder.Path() / name); }

  /// @return what was told when it failed; empty when it did not
  static QString Save(PictureWindow& window, const QString& path) {
    QSignalSpy saved(&window, &PictureWindow::saved);
    QSignalSpy failed(&window, &PictureWindow::saveFailed);
    window.save(path);
    EXPECT_TRUE(WaitUntil([&] { return saved.count() + failed.count() == 1; }));
    return failed.isEmpty() ? QString() : failed[0][0].toString();
  }

  /// What the user is offered to save the part under that is shown.
  static QString SuggestedFile(PictureWindow& window) {
    for (QAction* const action : window.findChildren<QAction*>()) {
      if (action->text() == "Save As…") {
        action->trigger();
      }
    }
    std::unique_ptr<QFileDialog> dialog(window.findChild<QFileDialog*>());
    return dialog ? dialog->selectedFiles().value(0) : QString();
  }

  const Testing::TemporaryFolder folder;
  const cv::Mat pixels = Testing::NoiseCapture({300, 700}, 8);
  QStringList questions;
  ClosingAnswer answer = ClosingAnswer::Stay;
};

TEST_F(PictureWindowTest, SavesThePixelsThatItWasGiven) {
  const auto window = Open({RecordedFrom(pixels)});
  EXPECT_EQ(Save(*window, PathOf("page.png")), "");
  EXPECT_TRUE(Testing::SameBits(ReadBack(folder.Prefix() + "page.png"), pixels));
  EXPECT_TRUE(window->isSaved());
  EXPECT_FALSE(window->isWindowModified());
}

TEST_F(PictureWindowTest, SavesInTheFormatOfTheExtension) {
  const auto window = Open({RecordedFrom(pixels)});
  EXPECT_EQ(Save(*window, PathOf("page.webp")), "");
  EXPECT_TRUE(Testing::SameBits(ReadBack(folder.Prefix() + "page.webp"), pixels));
}

TEST_F(PictureWindowTest, TellsWhyItCannotSaveAndStaysUnsaved) {
  const auto window = Open({RecordedFrom(pixels)});
  EXPECT_NE(Save(*window, PathOf("missing/page.png")), "");
  EXPECT_NE(Save(*window, PathOf("page.unknown")), "");
  EXPECT_FALSE(window->isSaved());
  EXPECT_TRUE(window->isWindowModified());
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(PictureWindowTest, TellsWhichFormatHoldsATallPicture) {
  const auto window = Open({RecordedAs(std::make_shared<EndlessPicture>())});
  EXPECT_EQ(
      Save(*window, PathOf("page.jpg")),
      "An image of 800 x 4000000 pixels is too large for JPEG, which holds at most 65500 rows "
      "or columns; save it as PNG");
}

TEST_F(PictureWindowTest, LeavesTheOldFileWhenThePictureCannotBeRead) {
  const auto window = Open({RecordedAs(std::make_shared<LostPicture>())});
  cv::imwrite(folder.Prefix() + "page.png", cv::Mat(5, 5, CV_8UC3, cv::Scalar::all(9)));
  EXPECT_EQ(Save(*window, PathOf("page.png")), "The captures are lost");
  EXPECT_EQ(ReadBack(folder.Prefix() + "page.png").size(), cv::Size(5, 5));
  EXPECT_EQ(folder.Contents().size(), 1U);
}

TEST_F(PictureWindowTest, AsksBeforeAnUnsavedPictureIsLost) {
  const auto window = Open({RecordedFrom(pixels)});
  EXPECT_FALSE(window->close());
  EXPECT_EQ(questions, QStringList("The picture is not saved."));
  answer = ClosingAnswer::Discard;
  EXPECT_TRUE(window->close());
}

TEST_F(PictureWindowTest, ClosesWithoutAQuestionWhenItIsSaved) {
  const auto window = Open({RecordedFrom(pixels)});
  EXPECT_EQ(Save(*window, PathOf("page.png")), "");
  EXPECT_TRUE(window->close());
  EXPECT_TRUE(questions.isEmpty());
}

TEST_F(PictureWindowTest, ClosesByItselfWhenTheUserSavesAtTheEnd) {
  answer = ClosingAnswer::Save;
  const auto window = Open({RecordedFrom(pixels)});
  EXPECT_FALSE(window->close());
  auto* const dialog = window->findChild<QFileDialog*>();
  ASSERT_NE(dialog, nullptr);
  emit dialog->fileSelected(PathOf("page.png"));
  EXPECT_TRUE(WaitUntil([&] { return window->isHidden(); }));
  EXPECT_TRUE(Testing::SameBits(ReadBack(folder.Prefix() + "page.png"), pixels));
}

TEST_F(PictureWindowTest, ClosesOnlyWhenEverythingIsWritten) {
  const cv::Mat large = Testing::NoiseCapture({2000, 3000}, 9);
  const auto window = Open({RecordedFrom(large)});
  window->save(PathOf("page.png"));
  EXPECT_FALSE(window->close());
  EXPECT_TRUE(WaitUntil([&] { return window->isHidden(); }));
  EXPECT_TRUE(questions.isEmpty());
  EXPECT_TRUE(Testing::SameBits(ReadBack(folder.Prefix() + "page.png"), large));
}

TEST_F(PictureWindowTest, LeavesNothingOfAFileThatWasStopped) {
  {
    const auto window = Open({RecordedAs(std::make_shared<EndlessPicture>())});
    window->save(PathOf("page.png"));
    QTest::qWait(100);
  }
  EXPECT_TRUE(folder.Contents().empty());
}

TEST_F(PictureWindowTest, AsksForEveryPart) {
  const auto window = Open({RecordedFrom(pixels), RecordedFrom(pixels.rowRange(0, 100))});
  EXPECT_EQ(Save(*window, PathOf("first.png")), "");
  EXPECT_FALSE(window->close());
  EXPECT_EQ(questions, QStringList("1 of 2 parts of the picture are not saved."));
  window->findChild<QComboBox*>()->setCurrentIndex(1);
  EXPECT_EQ(Save(*window, PathOf("second.png")), "");
  EXPECT_EQ(ReadBack(folder.Prefix() + "second.png").rows, 100);
  EXPECT_TRUE(window->close());
}

TEST_F(PictureWindowTest, SuggestsAFileOfItsOwnForEveryPart) {
  const auto window = Open({RecordedFrom(pixels), RecordedFrom(pixels.rowRange(0, 100))});
  EXPECT_EQ(Save(*window, PathOf("page.png")), "");
  EXPECT_EQ(SuggestedFile(*window), PathOf("page.png"));
  window->showPart(1);
  EXPECT_EQ(SuggestedFile(*window), PathOf("page-2.png"));
  EXPECT_EQ(Save(*window, PathOf("page-2.png")), "");
  window->showPart(0);
  EXPECT_EQ(SuggestedFile(*window), PathOf("page.png"));
}

TEST_F(PictureWindowTest, SuggestsNoFileOfAnotherPartForTheFirstOne) {
  const auto window = Open({RecordedFrom(pixels), RecordedFrom(pixels.rowRange(0, 100))});
  window->showPart(1);
  EXPECT_EQ(Save(*window, PathOf("page.png")), "");
  window->showPart(0);
  EXPECT_EQ(SuggestedFile(*window), PathOf("page-1.png"));
}

TEST_F(PictureWindowTest, CountsAPartAsUnsavedWhoseFileAnotherPartHasReplaced) {
  const auto window = Open({RecordedFrom(pixels), RecordedFrom(pixels.rowRange(0, 100))});
  EXPECT_EQ(Save(*window, PathOf("page.png")), "");
  window->showPart(1);
  EXPECT_EQ(Save(*window, PathOf("./page.png")), "");
  EXPECT_FALSE(window->isSaved());
  EXPECT_FALSE(window->close());
  EXPECT_EQ(questions, QStringList("1 of 2 parts of the picture are not saved."));
  window->showPart(0);
  EXPECT_EQ(Save(*window, PathOf("page-1.png")), "");
  EXPECT_TRUE(window->isSaved());
}

TEST_F(PictureWindowTest, KeepsAPartSavedWhoseFileAnotherPartCouldNotReplace) {
  const auto window = Open({RecordedFrom(pixels), RecordedAs(std::make_shared<LostPicture>())});
  EXPECT_EQ(Save(*window, PathOf("page.png")), "");
  window->showPart(1);
  EXPECT_NE(Save(*window, PathOf("page.png")), "");
  EXPECT_FALSE(window->close());
  EXPECT_EQ(questions, QStringList("1 of 2 parts of the picture are not saved."));
}

TEST_F(PictureWindowTest, CopiesThePictureAsAnImageAndAsAFile) {
  const auto window = Open({RecordedFrom(pixels)});
  QSignalSpy copied(window.get(), &PictureWindow::copied);
  window->copy();
  ASSERT_TRUE(WaitUntil([&] { return copied.count() == 1; }));
  const QMimeData* const data = QApplication::clipboard()->mimeData();
  const auto image = qvariant_cast<QImage>(data->imageData());
  EXPECT_EQ(image, ImageOf(pixels));
  ASSERT_EQ(data->urls().size(), 1);
  EXPECT_TRUE(Testing::SameBits(ReadBack(data->urls()[0].toLocalFile().toStdString()), pixels));
  EXPECT_TRUE(QImage::fromData(data->data("image/png")).width() == pixels.cols);
}

/// Tells where temporary files go.
class CopyTest : public PictureWindowTest {
 protected:
  ~CopyTest() override { qunsetenv("TMPDIR"); }

  bool IsPrepared() const {
    QDirIterator files(PathOf(""), {"scrolling-capture.png"}, QDir::Files,
                       QDirIterator::Subdirectories);
    return files.hasNext();
  }
};

TEST_F(CopyTest, IsForgottenWhenItFails) {
  const auto window = Open({RecordedFrom(pixels)});
  QSignalSpy copied(window.get(), &PictureWindow::copied);
  qputenv("TMPDIR", "/nowhere");
  window->copy();
  ASSERT_TRUE(WaitUntil(
      [&] { return window->statusBar()->currentMessage().startsWith("No temporary folder"); }));
  qputenv("TMPDIR", PathOf("").toLocal8Bit());
  QTest::mousePress(window->findChild<DragHandle*>(), Qt::LeftButton);
  ASSERT_TRUE(WaitUntil([this] { return IsPrepared(); }));
  QTest::qWait(200);
  EXPECT_EQ(copied.count(), 0) << "by now the user wants to drag it";
}

TEST_F(PictureWindowTest, LeavesNoTemporaryFile) {
  QString file;
  {
    PictureTransfer transfer(RecordedFrom(pixels));
    transfer.prepare();
    ASSERT_TRUE(WaitUntil([&] { return transfer.isReady(); }));
    file = transfer.file();
    EXPECT_TRUE(QFile::exists(file));
  }
  EXPECT_FALSE(QFile::exists(file));
}

TEST_F(PictureWindowTest, TellsWhatTheUserShouldKnow) {
  const PictureWindow window({{RecordedFrom(pixels)}, {"The window was closed"}}, AskInDialog);
  bool isTold = false;
  for (const QLabel* const label : window.findChildren<QLabel*>()) {
    isTold = isTold || label->text().contains("The window was closed");
  }
  EXPECT_TRUE(isTold);
}

}  // namespace
}  // namespace ScrollingCapture::Desktop
