#include "platform/base/flush_denormals.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(FlushDenormals, TreatsDenormalsAsZeroAndRestoresTheMode) {
    volatile double smallest = std::numeric_limits<double>::min();
    volatile double denormal = smallest / 4.0;
    EXPECT_GT(denormal, 0.0);
    {
        const orvane::platform::FlushDenormals outer;
        {
            const orvane::platform::FlushDenormals inner;
            volatile double result = smallest / 4.0;
            EXPECT_EQ(result, 0.0);
        }
        volatile double fromOperand = denormal * 4.0;
        EXPECT_EQ(fromOperand, 0.0);
    }
    volatile double again = smallest / 4.0;
    EXPECT_EQ(again, denormal);
}

} // namespace
