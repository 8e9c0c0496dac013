#pragma once

#include <QLabel>

#include <desktop/picture/PictureTransfer.h>

namespace ScrollingCapture::Desktop {

/// A thing to be dragged into another program: the picture goes there. Pressing prepares it; the
/// drag begins when it is ready and the button still held.
class DragHandle : public QLabel {
  Q_OBJECT

 public:
  explicit DragHandle(QWidget* parent = nullptr);

  /// What is dragged from now on.
  /// @param shown may be null; must outlive its use here
  void setTransfer(PictureTransfer* shown);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void dragWhenReady();

  PictureTransfer* transfer = nullptr;
  bool isDragged = false;
  QPoint pressed;
};

}  // namespace ScrollingCapture::Desktop
