// Structures of programs that were compiled against another version of the library.

#include <cstddef>
#include <vector>

#include <c/calls/SizedStruct.h>
#include <gmock/gmock.h>

#include "Handles.h"

namespace ScrollingCapture {
namespace {

/// A structure as it was, and as it is.
struct Older {
  size_t struct_size;
  int first;
  int second;
};
struct Newer {
  size_t struct_size;
  int first;
  int second;
  void* third;
};

int something = 0;
const Newer Defaults = {sizeof(Newer), 1, 2, &something};

TEST(SizedStruct, OfAnOlderProgramHasDefaultsForWhatItLacks) {
  const Older given = {sizeof(Older), 7, 8};
  const Newer taken = C::Taken(reinterpret_cast<const Newer*>(&given), Defaults, "settings");
  EXPECT_EQ(taken.first, 7);
  EXPECT_EQ(taken.second, 8);
  EXPECT_EQ(taken.third, &something);
}

TEST(SizedStruct, OfANewerProgramIsTakenAsLongAsNothingUnknownIsSet) {
  Newer given = {sizeof(Newer), 7, 8, nullptr};
  const auto take = [&given] {
    return C::Taken(reinterpret_cast<const Older*>(&given), Older{sizeof(Older), 1, 2}, "settings");
  };
  EXPECT_EQ(take().second, 8);
  given.third = &something;
  EXPECT_THROW(take(), C::InvalidArgument);
}

TEST(SizedStruct, OfAnOlderProgramIsFilledNoFurtherThanItGoes) {
  Newer storage = {sizeof(Older), 0, 0, &something};
  C::Give(Newer{0, 3, 4, nullptr}, &storage, "outcome");
  EXPECT_EQ(storage.struct_size, sizeof(Older));
  EXPECT_EQ(storage.first, 3);
  EXPECT_EQ(storage.second, 4);
  EXPECT_EQ(storage.third, &something);
}

TEST(SizedStruct, OfAnyOtherSizeIsRefused) {
  for (const size_t size : {size_t{0}, size_t{4}, size_t{12}, C::LargestStruct + 8, ~size_t{0}}) {
    const Newer given = {size, 0, 0, nullptr};
    EXPECT_THROW(C::Taken(&given, Defaults, "settings"), C::InvalidArgument) << size;
  }
}

TEST(SizedStruct, IsInitialisedAsFarAsItGoes) {
  Newer storage = {99, 9, 9, &something};
  C::Initialise(reinterpret_cast<Older*>(&storage), sizeof storage, Older{sizeof(Older), 1, 2});
  EXPECT_EQ(storage.struct_size, sizeof storage);
  EXPECT_EQ(storage.first, 1);
  EXPECT_EQ(storage.third, nullptr);

  Newer older = {99, 9, 9, nullptr};
  C::Initialise(&older, sizeof(Older), Defaults);
  EXPECT_EQ(older.second, 2);
  EXPECT_EQ(older.third, nullptr);
}

TEST(SizedStruct, OfASessionMayEndAfterAnyOfItsFields) {
  vel_session_settings settings = Testing::DefaultSettings();
  settings.struct_size = offsetof(vel_session_settings, orientation) + sizeof(int32_t);
  settings.struct_size += settings.struct_size % alignof(vel_session_settings);
  settings.spill_folder = "this is not read";
  vel_session* session = nullptr;
  EXPECT_EQ(vel_session_create(&settings, &session, nullptr, 0), VEL_OK);
  vel_session_free(session);
}

}  // namespace
}  // namespace ScrollingCapture
