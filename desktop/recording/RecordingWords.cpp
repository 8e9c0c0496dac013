#include <QCoreApplication>
#include <QLocale>

#include <desktop/recording/RecordingWords.h>
#include <desktop/support/Explanation.h>

namespace ScrollingCapture::Desktop {
namespace {

QString Translated(const char* words) { return QCoreApplication::translate("Recording", words); }

QString TooFastWords(const Place& wayBack) {
  const QString row = QLocale().toString(wayBack.row);
  const QString where =
      wayBack.column == 0
          ? Translated("row %1").arg(row)
          : Translated("row %1, column %2").arg(row, QLocale().toString(wayBack.column));
  return Translated("Too fast: scroll back to where %1 of the picture was at the top").arg(where);
}

QString DoubtWords(std::size_t doubtful) {
  return doubtful == 1 ? Translated("One capture is in doubt: it fits in several places")
                       : Translated("%1 captures are in doubt: they fit in several places")
                             .arg(QLocale().toString(static_cast<qulonglong>(doubtful)));
}

}  // namespace

QString SizeWords(const Live::RecordingStatus& status) {
  return Translated("%1 rows × %2 columns")
      .arg(QLocale().toString(status.seen.height), QLocale().toString(status.seen.width));
}

QString WarningWords(const Live::RecordingStatus& status) {
  if (!status.hindrance.empty()) {
    return AsLine(status.hindrance);
  }
  if (status.tooFast) {
    return TooFastWords(status.WayBack());
  }
  return status.doubtful > 0 ? DoubtWords(status.doubtful) : QString();
}

QStringList NotesOn(const Live::RecordingEnd& end, std::size_t parts) {
  QStringList notes;
  if (!end.line.empty()) {
    notes << Translated("%1; this is what was captured until then").arg(AsLine(end.line));
  }
  if (parts > 1) {
    notes
        << Translated("Captures are missing in between: the picture comes in %1 parts").arg(parts);
  }
  if (end.status.doubtful > 0) {
    notes << DoubtWords(end.status.doubtful);
  }
  return notes;
}

}  // namespace ScrollingCapture::Desktop
