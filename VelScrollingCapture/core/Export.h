#pragma once

/// Marks what the shared library offers to its users; every other symbol stays hidden.
#define VEL_EXPORT __attribute__((visibility("default")))
