// Options that every sanitized test program starts with. An allocation that cannot be made must
// fail as it does without a sanitizer, since the library has an answer to that.

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" {

const char* __asan_default_options();
const char* __tsan_default_options();

const char* __asan_default_options() { return "allocator_may_return_null=1"; }
const char* __tsan_default_options() { return "allocator_may_return_null=1"; }
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
