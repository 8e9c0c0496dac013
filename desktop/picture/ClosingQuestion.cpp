#include <QMessageBox>

#include <desktop/picture/ClosingQuestion.h>

namespace ScrollingCapture::Desktop {

ClosingAnswer AskInDialog(QWidget* window, const QString& loss) {
  const auto answer = QMessageBox::question(
      window, window->windowTitle(), loss,
      QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
  switch (answer) {
    case QMessageBox::Save:
      return ClosingAnswer::Save;
    case QMessageBox::Discard:
      return ClosingAnswer::Discard;
    default:
      return ClosingAnswer::Stay;
  }
}

}  // namespace ScrollingCapture::Desktop
