#pragma once

#include <gtest/gtest.h>

/**
 * First line of a test that lets threads of Qt's own work, such as its pool. Qt is not built for the thread
 * sanitizer: how it hands work over looks like races.
 */
#ifdef __SANITIZE_THREAD__
#define SKIP_WITHOUT_SIGHT_OF_QTS_THREADS() GTEST_SKIP()
#else
#define SKIP_WITHOUT_SIGHT_OF_QTS_THREADS() static_cast<void>(0)
#endif
