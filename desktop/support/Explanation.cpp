#include <desktop/support/Explanation.h>
#include <velscroll/terminal/Explanation.h>

namespace ScrollingCapture::Desktop {

QString Explain(const std::exception_ptr& exception) {
  return AsLine(Program::ExplanationOf(exception).words);
}

QString AsLine(const std::string& words) {
  QString line = QString::fromStdString(words).simplified();
  if (!line.isEmpty()) {
    line[0] = line[0].toUpper();
  }
  return line;
}

}  // namespace ScrollingCapture::Desktop
