// Every allocation of this program goes through functions of its own here, so that each one in turn
// can fail: those of the formats' libraries as well.

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

#include <gmock/gmock.h>
#include <testkit/TemporaryFolder.h>
#include <testkit/output/ColourProfile.h>
#include <testkit/output/DrawnPicture.h>
#include <testkit/output/MemorySink.h>
#include <velscroll/output/PictureWriting.h>
#include <velscroll/terminal/Failure.h>

namespace ScrollingCapture {
namespace {

constexpr size_t Never = std::numeric_limits<size_t>::max();

thread_local size_t passing = Never;
thread_local bool failed = false;

/// Whether this allocation, of those that follow the ones that pass the only one, fails.
bool AllocationFails() {
  if (passing == Never) {
    return false;
  }
  if (passing-- > 0) {
    return false;
  }
  passing = Never;
  failed = true;
  return true;
}

/// Lets one allocation of this thread fail while it lives.
class FailingAllocation {
 public:
  explicit FailingAllocation(size_t allocationsBefore) {
    failed = false;
    passing = allocationsBefore;
  }
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation() { passing = Never; }
};

}  // namespace
}  // namespace ScrollingCapture

// NOLINTBEGIN: names and behaviour are the C library's
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

__attribute__((visibility("default"))) void* malloc(size_t size) {
  return ScrollingCapture::AllocationFails() ? nullptr : __libc_malloc(size);
}
__attribute__((visibility("default"))) void* calloc(size_t count, size_t size) {
  return ScrollingCapture::AllocationFails() ? nullptr : __libc_calloc(count, size);
}
__attribute__((visibility("default"))) void* realloc(void* block, size_t size) {
  return ScrollingCapture::AllocationFails() ? nullptr : __libc_realloc(block, size);
}
__attribute__((visibility("default"))) int posix_memalign(void** block, size_t alignment,
                                                          size_t size) {
  if (ScrollingCapture::AllocationFails()) {
    return ENOMEM;
  }
  *block = __libc_memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}
}
// NOLINTEND

namespace ScrollingCapture {
namespace {

using Program::PictureOutput;

class AllocationFaults : public ::testing::TestWithParam<const char*> {
 protected:
  /// Calls `work` with every allocation of it failing once.
  template <typename Work>
  void FailEach(const Work& work) {
    work();  // what is made only once
    for (size_t before = 0;; ++before) {
      const FailingAllocation failing(before);
      try {
        work();
      } catch (const std::bad_alloc&) {
      } catch (const Program::Failed&) {
      } catch (const cv::Exception&) {
      }
      passing = Never;
      if (!failed) {
        EXPECT_GT(before, 10U);
        return;
      }
      EXPECT_LT(before, 100000U);
    }
  }

  const Testing::TemporaryFolder folder;
  const cv::Mat picture = Testing::DrawnPictureWithHoles({150, 120});
};

class MetadataAllocationFaults : public AllocationFaults {};

std::string NameOfExtension(const ::testing::TestParamInfo<const char*>& extension) {
  return extension.param + 1;
}

INSTANTIATE_TEST_SUITE_P(Formats, AllocationFaults,
                         ::testing::Values(".png", ".tif", ".bmp", ".webp", ".jpg"),
                         NameOfExtension);

/// libtiff 4.5 does not survive every failure while it reads a directory.
INSTANTIATE_TEST_SUITE_P(Formats, MetadataAllocationFaults,
                         ::testing::Values(".png", ".bmp", ".webp", ".jpg"), NameOfExtension);

TEST_P(AllocationFaults, WhileWritingLeaveNothingBehind) {
  PictureOutput output;
  output.path = folder.Prefix() + "page" + GetParam();
  output.metadata = {Program::Resolution{2835, 2835}, Testing::ColourProfile("RGB ", 3000)};
  output.mostRowsPerFile = 100;
  const Program::Picture source = Program::PictureOf(picture);
  FailEach([&] { StagePicture(source, output, [](int) {}); });
  EXPECT_THAT(folder.Contents(), ::testing::IsEmpty());
}

TEST_P(MetadataAllocationFaults, GiveTheWholeProfileOrNone) {
  const auto profile = Testing::ColourProfile("RGB ", 3000);
  Testing::MemorySink sink;
  const auto writer = MakeRowWriter(Program::PictureFormatOf(std::string("p") + GetParam()),
                                    {"p", picture.size(), true, {std::nullopt, profile}}, {}, sink);
  writer->Write(picture);
  writer->Finish();
  size_t calls = 0;
  for (bool more = true; more; ++calls) {
    const FailingAllocation failing(calls);
    try {
      const auto metadata = Program::MetadataOf(sink.Bytes());
      passing = Never;
      EXPECT_TRUE(metadata.colourProfile.empty() || metadata.colourProfile == profile);
    } catch (const std::bad_alloc&) {
    }
    passing = Never;
    more = failed;
  }
  EXPECT_LT(calls, 1000U);
}

}  // namespace
}  // namespace ScrollingCapture
