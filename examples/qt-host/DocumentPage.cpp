#include "DocumentPage.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>

namespace {

constexpr int PageWidth = 720;
constexpr int Sections = 9;
constexpr int Margin = 48;

const QStringList Words = {"harbour",  "ledger",  "morning", "quiet",  "river",  "signal",
                           "timber",   "violet",  "weather", "amber",  "bridge", "cloud",
                           "distant",  "engine",  "field",   "garden", "hollow", "island",
                           "junction", "keeps",   "lantern", "meets",  "north",  "opens",
                           "paper",    "returns", "slowly",  "under"};

QString Sentences(QRandomGenerator& random, int words) {
  QString text;
  for (int word = 0; word < words; ++word) {
    text += Words[random.bounded(Words.size())];
    text += word % 11 == 10 ? ". " : " ";
  }
  return text;
}

QColor RandomColour(QRandomGenerator& random) {
  return QColor::fromHsv(random.bounded(360), 110, 220);
}

void DrawBars(QPainter& painter, const QRect& area, QRandomGenerator& random) {
  constexpr int Bars = 24;
  const int width = area.width() / Bars;
  for (int bar = 0; bar < Bars; ++bar) {
    const int height = random.bounded(10, area.height());
    painter.fillRect(area.left() + bar * width, area.bottom() - height, width - 3, height,
                     RandomColour(random));
  }
}

void DrawCurve(QPainter& painter, const QRect& area, QRandomGenerator& random) {
  constexpr int Points = 16;
  QPainterPath curve(area.bottomLeft());
  for (int point = 0; point < Points; ++point) {
    const int x = area.left() + point * area.width() / (Points - 1);
    curve.lineTo(x, area.top() + random.bounded(area.height()));
  }
  curve.lineTo(area.bottomRight());
  painter.fillPath(curve, RandomColour(random));
}

void DrawSection(QPainter& painter, const QRect& section, int number) {
  QRandomGenerator random(static_cast<quint32>(number));
  const QRect area = section.adjusted(Margin, 24, -Margin, 0);
  QFont font("DejaVu Sans");
  font.setPixelSize(22);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(QColor(40, 60, 100));
  painter.drawText(area, Qt::AlignLeft,
                   QString("%1. The %2").arg(number).arg(Words[random.bounded(Words.size())]));
  font.setPixelSize(14);
  font.setBold(false);
  painter.setFont(font);
  painter.setPen(Qt::black);
  painter.drawText(area.adjusted(0, 40, 0, 0), Qt::TextWordWrap, Sentences(random, 70));
  const QRect figure = area.adjusted(0, 170, 0, -30);
  painter.fillRect(figure, QColor(240, 240, 236));
  if (number % 2 == 0) {
    DrawBars(painter, figure, random);
  } else {
    DrawCurve(painter, figure, random);
  }
}

}  // namespace

DocumentPage::DocumentPage(QWidget* parent) : QWidget(parent) {
  QRandomGenerator random(Sections);
  int top = 0;
  for (int section = 0; section < Sections; ++section) {
    const int height = random.bounded(300, 480);
    sections.emplace_back(0, top, PageWidth, height);
    top += height;
  }
  setFixedSize(PageWidth, top);
}

void DocumentPage::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(event->rect(), Qt::white);
  for (size_t section = 0; section < sections.size(); ++section) {
    if (sections[section].intersects(event->rect())) {
      DrawSection(painter, sections[section], static_cast<int>(section) + 1);
    }
  }
}
