// Reads any command line: arguments within their limits, the help text, or a clear complaint.

#include <string>
#include <vector>

#include <fuzz/support/Expect.h>
#include <fuzz/support/Messages.h>
#include <fuzz/support/Quiet.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <velscroll/arguments/Arguments.h>
#include <velscroll/names/SettingNames.h>

namespace ScrollingCapture::Fuzzing {
namespace {

constexpr const char* Words[] = {"-o",
                                 "--output=page.png",
                                 "a.png",
                                 "--engine",
                                 "exact",
                                 "phase-correlation",
                                 "--fixed",
                                 "keep",
                                 "--strict",
                                 "--joins",
                                 "--split",
                                 "--background",
                                 "#abc",
                                 "--jpeg-quality",
                                 "--png-level",
                                 "--orientation",
                                 "vertical",
                                 "horizontal",
                                 "both",
                                 "--consistent",
                                 "--threads",
                                 "--keep-repeats",
                                 "--borders",
                                 "--difference-threshold",
                                 "--neighbor-threshold",
                                 "--memory-limit",
                                 "200MiB",
                                 "--spill-folder",
                                 "--preview",
                                 "--preview-size",
                                 "250x250",
                                 "--report",
                                 "-q",
                                 "-qq",
                                 "--quiet",
                                 "--help",
                                 "--version",
                                 "--",
                                 "8"};

/// A program's argument ends at its first zero.
std::string AnyWord(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 3) != 0) {
    return data.PickValueInArray(Words);
  }
  const std::string word = data.ConsumeRandomLengthString(64);
  return word.substr(0, word.find('\0'));
}

void ExpectWithinLimits(const Program::Arguments& arguments) {
  Expect(!arguments.captures.empty(), "there are captures");
  Expect(!arguments.outputs.image.empty(), "there is an output");
  const SessionSettings& session = arguments.session;
  Expect(session.threadCount >= 1 && session.threadCount <= 1024, "threads are limited");
  Expect(
      !session.borders || (session.borders->difference <= 255 && session.borders->neighbors <= 8),
      "thresholds are limited");
  Expect(!session.borders || session.engine == Engine::PhaseCorrelation,
         "borders come with phase correlation only");
  Expect(arguments.outputs.mostRowsPerFile.value_or(1) >= 1, "a piece has a row");
  const cv::Size size = session.previewBox.value_or(cv::Size(1, 1));
  Expect(size.width >= 1 && size.height >= 1 && size.width <= 10000 && size.height <= 10000,
         "the preview's size is limited");
  Expect(!Program::NameOf(session.orientation).empty(), "the orientation has a name");
}

void ParseAny(FuzzedDataProvider& data) {
  const Quiet quiet;
  std::vector<std::string> words = {"velscroll"};
  while (data.remaining_bytes() > 0) {
    words.push_back(AnyWord(data));
  }
  std::vector<const char*> pointers;
  pointers.reserve(words.size());
  for (const std::string& word : words) {
    pointers.push_back(word.c_str());
  }
  try {
    const auto arguments =
        Program::ParseArguments(static_cast<int>(pointers.size()), pointers.data());
    if (arguments) {
      ExpectWithinLimits(*arguments);
    } else {
      Expect(!quiet.output.Text().empty(), "help or version are printed");
    }
  } catch (const Program::BadInput& failure) {
    ExpectOneLine(failure);
  }
}

}  // namespace
}  // namespace ScrollingCapture::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, size_t count) {
  FuzzedDataProvider data(bytes, count);
  ScrollingCapture::Fuzzing::ParseAny(data);
  return 0;
}
