#include <fcntl.h>

#include <gmock/gmock.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/output/Redirection.h>
#include <velscroll/output/Outputs.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

using Program::BadInput;
using ::testing::StartsWith;

class Outputs : public ::testing::Test {
 protected:
  /// What is said to outputs that are not possible.
  template <typename Action>
  static std::string Complaint(const Action& action) {
    try {
      action();
      ADD_FAILURE() << "possible";
      return "";
    } catch (const BadInput& failure) {
      return failure.what();
    }
  }

  std::string PathOf(const std::string& name) const { return folder.Prefix() + name; }

  const Testing::TemporaryFolder folder;
};

TEST_F(Outputs, ToATerminalAreRefusedByWhatTheyAre) {
  const Testing::TerminalOutput terminal;
  Program::OutputSettings image;
  image.image = "-";
  EXPECT_THAT(Complaint([&] { Program::Outputs{image}; }), StartsWith("the image would be"));
  Program::OutputSettings report;
  report.image = PathOf("page.png");
  report.report = "-";
  EXPECT_THAT(Complaint([&] { Program::Outputs{report}; }), StartsWith("the report would be"));
}

TEST_F(Outputs, InPartsAreNotForStandardOutput) {
  const Program::FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  const Testing::Redirection redirection(nowhere.Number());
  Program::OutputSettings settings;
  settings.image = "-";
  const Program::Outputs outputs(settings);
  EXPECT_NO_THROW(outputs.RequireWritable({{10, 20}}));
  EXPECT_THAT(Complaint([&] {
                outputs.RequireWritable({{10, 20}, {10, 20}});
              }),
              StartsWith("the picture is in 2 parts, which cannot all go to standard output"));
}

}  // namespace
}  // namespace ScrollingCapture
