#include "customipp/movers/moverCases.h"

#include <hwy/tests/hwy_gtest.h>

namespace {

/** Runs each case once for every instruction set that is compiled in. */
class dupTest : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(dupTest);

TEST_P(dupTest, EveryChannelGetsTheGreyValue)
{
#include <customipp/dup.def>
}

} // namespace
