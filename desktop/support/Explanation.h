#pragma once

#include <QString>
#include <exception>
#include <string>

namespace ScrollingCapture::Desktop {

/// What an exception means to the user, in one line that begins with a capital letter.
QString Explain(const std::exception_ptr& exception);

/// A line of the user interface from words that may begin with a small letter.
QString AsLine(const std::string& words);

}  // namespace ScrollingCapture::Desktop
