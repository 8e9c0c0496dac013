#include <string_view>

#include <velscroll/input/NaturalOrder.h>

namespace ScrollingCapture::Program {
namespace {

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

/// Takes the leading run of digits, or else the leading character, off `text`.
std::string_view TakePiece(std::string_view& text) {
  size_t length = 0;
  while (length < text.size() && IsDigit(text[length])) {
    ++length;
  }
  if (length == 0) {
    length = 1;
  }
  const std::string_view piece = text.substr(0, length);
  text.remove_prefix(length);
  return piece;
}

std::string_view WithoutLeadingZeros(std::string_view number) {
  const size_t firstOther = number.find_first_not_of('0');
  return firstOther == std::string_view::npos ? std::string_view() : number.substr(firstOther);
}

/// Negative, zero or positive, as string comparison gives.
int Compare(std::string_view first, std::string_view second) {
  if (!IsDigit(first.front()) || !IsDigit(second.front())) {
    return first.compare(second);
  }
  const std::string_view firstValue = WithoutLeadingZeros(first);
  const std::string_view secondValue = WithoutLeadingZeros(second);
  if (firstValue.size() != secondValue.size()) {
    return firstValue.size() < secondValue.size() ? -1 : 1;
  }
  return firstValue.compare(secondValue);
}

}  // namespace

bool ComesNaturallyBefore(const std::string& first, const std::string& second) {
  std::string_view restOfFirst = first;
  std::string_view restOfSecond = second;
  while (!restOfFirst.empty() && !restOfSecond.empty()) {
    const int order = Compare(TakePiece(restOfFirst), TakePiece(restOfSecond));
    if (order != 0) {
      return order < 0;
    }
  }
  if (restOfFirst.empty() != restOfSecond.empty()) {
    return restOfFirst.empty();
  }
  return first.size() != second.size() ? first.size() < second.size() : first < second;
}

}  // namespace ScrollingCapture::Program
