// Writes reports about files with any names: JSON that can be read again and tells the same.

#include <algorithm>
#include <string>

#include <fuzz/support/Expect.h>
#include <fuzz/support/RandomCaptures.h>
#include <fuzz/velscroll/ToldReport.h>
#include <velscroll/report/Report.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr size_t LongestName = 64;

std::string AnyText(FuzzedDataProvider& data) {
  return data.ConsumeRandomLengthString(LongestName);
}

Join AnyJoin(FuzzedDataProvider& data) {
  Join join;
  join.verdict =
      data.PickValueInArray({Verdict::Proven, Verdict::Likely, Verdict::Doubtful, Verdict::None});
  join.motion = AnyTranslation(data, {100, 100});
  join.compared = data.ConsumeIntegral<std::int64_t>();
  join.equal = data.ConsumeIntegral<std::int64_t>();
  for (int i = data.ConsumeIntegralInRange(0, 3); i > 0; --i) {
    join.alternatives.push_back(AnyTranslation(data, {100, 100}));
  }
  return join;
}

Program::ReportedPart AnyPart(FuzzedDataProvider& data) {
  const std::string file = AnyText(data);
  return {file, {data.ConsumeIntegral<int>(), data.ConsumeIntegral<int>()}, {file}};
}

Program::ReportedCapture AnyOutcome(FuzzedDataProvider& data) {
  Program::ReportedCapture outcome;
  outcome.file = AnyText(data);
  outcome.state =
      data.PickValueInArray({Program::ReportedCapture::Kept, Program::ReportedCapture::Repeated,
                             Program::ReportedCapture::LeftOut});
  outcome.place = {data.ConsumeIntegral<int>(), data.ConsumeIntegral<int>()};
  outcome.part = data.ConsumeIntegralInRange<size_t>(0, 9);
  if (data.ConsumeBool()) {
    outcome.join = AnyJoin(data);
  }
  return outcome;
}

SessionSettings AnySettings(FuzzedDataProvider& data) {
  SessionSettings settings;
  settings.threadCount = data.ConsumeIntegral<unsigned int>();
  if (data.ConsumeBool()) {
    settings.borders = BorderThresholds{data.ConsumeIntegral<unsigned int>(),
                                        data.ConsumeIntegral<unsigned int>()};
  }
  if (data.ConsumeBool()) {
    settings.memoryLimit = data.ConsumeIntegral<std::uint64_t>();
  }
  return settings;
}

Program::ReportContent AnyContent(FuzzedDataProvider& data) {
  Program::ReportContent content;
  content.settings = AnySettings(data);
  for (int i = data.ConsumeIntegralInRange(1, 3); i > 0; --i) {
    content.parts.push_back(AnyPart(data));
  }
  if (data.ConsumeBool()) {
    content.borders = FixedBorders{{1, 2, 3, 4}, data.ConsumeIntegral<int>(), 0, 0, 0};
  }
  for (int i = data.ConsumeIntegralInRange(0, 4); i > 0; --i) {
    content.captures.push_back(AnyOutcome(data));
  }
  for (int i = data.ConsumeIntegralInRange(0, 2); i > 0; --i) {
    content.warnings.push_back(AnyText(data));
    content.remarks.push_back(AnyText(data));
  }
  content.seconds.reading = data.ConsumeFloatingPoint<double>();
  return content;
}

bool IsAscii(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char character) { return character >= 0; });
}

/// Bytes that are no UTF-8 cannot come back.
void ExpectText(const std::string& told, const std::string& text) {
  Expect(!IsAscii(text) || told == text, "plain text comes back as it was");
  Expect(told.empty() == text.empty(), "no text is lost");
}

void ReportAny(FuzzedDataProvider& data) {
  const Program::ReportContent content = AnyContent(data);
  const std::string text = Program::ReportText(content);
  Expect(text.back() == '\n', "the report ends with an end of line");

  const ToldReport told = ReadReport(text);
  Expect(told.parts.size() == content.parts.size(), "every part is told of");
  for (size_t i = 0; i < told.parts.size(); ++i) {
    ExpectText(told.parts[i].file, content.parts[i].file);
    Expect(told.parts[i].size == content.parts[i].size, "the size comes back");
  }
  Expect(told.captures.size() == content.captures.size(), "every capture is told of");
  for (size_t i = 0; i < told.captures.size(); ++i) {
    const Program::ReportedCapture& outcome = content.captures[i];
    ExpectText(told.captures[i].file, outcome.file);
    Expect(told.captures[i].row == outcome.place.row, "the place comes back");
    Expect(told.captures[i].hasJoin == outcome.join.has_value(), "the join comes back");
  }
  Expect(told.warnings == content.warnings.size(), "every warning is told");
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::ReportAny(data);
  return 0;
}
