#pragma once

#include <QString>
#include <QWidget>
#include <functional>

namespace ScrollingCapture::Desktop {

/// What becomes of a picture that is not saved when its window closes.
enum class ClosingAnswer { Save, Discard, Stay };

/// Asks the user before something is lost.
/// @param loss what would be lost, in one sentence
using ClosingQuestion = std::function<ClosingAnswer(QWidget* window, const QString& loss)>;

/// Asks in a dialog.
ClosingAnswer AskInDialog(QWidget* window, const QString& loss);

}  // namespace ScrollingCapture::Desktop
