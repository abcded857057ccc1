#pragma once

#include "reference.h"
#include "testImages.h"

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <gtest/gtest.h>
#include <string>

/** What the tests of pixels share. */
namespace conversionTesting {

/** Runs a test once on each instruction set of this processor that the library may choose. */
class onEveryTarget : public testing::TestWithParam<int64_t> {
protected:
    void SetUp() override { choose(GetParam()); }
    void TearDown() override { choose(0); }

private:
    static void choose(int64_t i_target)
    {
        hwy::SetSupportedTargetsForTest(i_target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

inline std::string targetName(const testing::TestParamInfo<int64_t>& i_info)
{
    return hwy::TargetName(i_info.param);
}

/** Converts into a result that holds known pixels, and compares pixels, report and the memory round the
 * result. */
void expectConversion(const reference::Image& i_source, reference::Type i_to, reference::Range i_input,
    reference::Range i_output, testImages::Layout i_sourceLayout = testImages::Layout::Compact,
    testImages::Layout i_resultLayout = testImages::Layout::Compact);

} // namespace conversionTesting
