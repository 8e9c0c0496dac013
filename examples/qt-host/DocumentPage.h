#pragma once

#include <QRect>
#include <QWidget>
#include <vector>

/// A long document of text and figures that never repeat, made up from a fixed seed.
class DocumentPage : public QWidget {
  Q_OBJECT

 public:
  explicit DocumentPage(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<QRect> sections;
};
