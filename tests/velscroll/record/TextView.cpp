// Shows pages of text in a window that is to be recorded, beside a scroll bar that is not, and
// draws all of the text into a file:
//   text_view WIDTH HEIGHT PICTURE.png
#include <QApplication>
#include <QScrollBar>
#include <QTextBrowser>
#include <array>
#include <random>

namespace {

using Random = std::minstd_rand;

unsigned Below(unsigned limit, Random& random) { return static_cast<unsigned>(random()) % limit; }

QString Paragraph(Random& random) {
  constexpr std::array words = {"amber", "birch", "cedar", "delta",        "ember",
                                "fjord", "grove", "heath", "inlet",        "jetty",
                                "knoll", "ledge", "marsh", "<b>north</b>", "<i>ocean</i>"};
  QString text;
  for (unsigned left = 20 + Below(90, random); left > 0; --left) {
    text += QString("%1 ").arg(words[Below(words.size(), random)]);
  }
  return "<p>" + text + "</p>";
}

QString Pages() {
  Random random(7);
  QString pages;
  for (int section = 1; section <= 14; ++section) {
    pages += QString("<h2>%1. Section</h2>").arg(section);
    for (unsigned left = 2 + Below(3, random); left > 0; --left) {
      pages += Paragraph(random);
    }
  }
  return pages;
}

void ShowPages(QTextBrowser& view) {
  view.setFont(QFont("DejaVu Sans", 11));
  view.setFrameStyle(QFrame::NoFrame);
  view.setFocusPolicy(Qt::NoFocus);
  view.setHtml(Pages());
}

// The scroll bar's range does not tell this before all of the text has been laid out.
QSize SizeOfAll(const QTextBrowser& view) {
  return {view.viewport()->width(), view.document()->size().toSize().height()};
}

bool DrawAll(QSize size, const QString& path) {
  QTextBrowser view;
  view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  ShowPages(view);
  view.resize(size);
  return view.grab().save(path);
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() != 4) {
    qCritical("Usage: text_view WIDTH HEIGHT PICTURE.png");
    return 2;
  }
  QTextBrowser view;
  view.setWindowTitle("Recorded page");
  view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  ShowPages(view);
  view.setFixedSize(arguments[1].toInt() + view.verticalScrollBar()->sizeHint().width(),
                    arguments[2].toInt());
  view.show();
  if (!DrawAll(SizeOfAll(view), arguments[3])) {
    qCritical("%s cannot be written", qPrintable(arguments[3]));
    return 1;
  }
  return QApplication::exec();
}
