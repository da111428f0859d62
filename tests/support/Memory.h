/// Lets an allocation fail: of the test's own, of the library and of what is beneath.
#ifndef TESTS_SUPPORT_MEMORY_H
#define TESTS_SUPPORT_MEMORY_H

/// How many more calls of `new` succeed before one fails; below 0, none fails.
extern long allocationsLeft;

#endif  // TESTS_SUPPORT_MEMORY_H
