#include <gtest/gtest.h>

#include "qel/ZorQelGlobalParameters.h"
#include "values/ZorWBEnvironment.h"

TEST(ZorWBEnvironment, StartsWithTheDocumentedDefaults) {
    ZorWBEnvironment environment(7);
    double lower = 0, upper = 0;
    environment.GetTrigonometricLimits(lower, upper);
    EXPECT_EQ(environment.GetTolerance(), 1e-14);
    EXPECT_EQ(environment.GetMaxEnumSize(), 50);
    EXPECT_EQ(environment.GetBBCacheSize(), 10000);
    EXPECT_EQ(environment.GetNumberOfBBAttempts(), 1);
    EXPECT_EQ(environment.GetMaxNumberOfBBCalls(), 0);
    EXPECT_EQ(environment.GetBBPrecision(), 1e-05);
    EXPECT_EQ(environment.GetBBWidth(), 1.0);
    EXPECT_EQ(environment.GetBBAlgorithm(), ZorWBBlackBoxDefaultAlgorithm);
    EXPECT_EQ(lower, -6.283185307179586);
    EXPECT_EQ(upper, 6.283185307179586);
    EXPECT_FALSE(environment.GetUseUnimodalInterval());
    EXPECT_FALSE(environment.GetMinimizeNumberOfBBCalls());
    EXPECT_EQ(environment.GetError(), 0u);
    EXPECT_EQ(environment.GetWBLevel(), 7u);
}

TEST(ZorWBEnvironment, ErrorCodesAccumulateAndOnlyTheTransientOneClears) {
    const ZorWBEnvironment environment(0);
    environment.SetError(2);
    environment.SetError(1);
    EXPECT_EQ(environment.GetError(), 3u);
    environment.InitForEval();
    EXPECT_EQ(environment.GetError(), 3u);
    environment.ClearError();
    environment.SetError(1);
    environment.InitForEval();
    EXPECT_EQ(environment.GetError(), 0u);
    environment.SetError(860);
    environment.InitForEval();
    EXPECT_EQ(environment.GetError(), 860u);
}

TEST(ZorWBEnvironment, ReadsTheOldTransformationsChoiceOnceAtConstruction) {
    ZorQelGlobalParameters& parameters = ZorQelGlobalParameters::GetGlobalParameters();
    parameters.SetUseOldST(true);
    parameters.SetQelFullOpenConfigurationLevel(0x02E80000);
    ZorWBEnvironment environment;
    parameters.Reset();
    EXPECT_TRUE(environment.IsUseOldSymbolicTransformations());
    EXPECT_EQ(environment.GetWBLevel(), 0x02E80000u);
    environment.SetUseOldSymbolicTransformations(false);
    EXPECT_FALSE(environment.IsUseOldSymbolicTransformations());
    EXPECT_EQ(ZorWBEnvironment().GetWBLevel(), 0xFFFFFFFFu);
}

TEST(ZorWBEnvironment, ResolvesTheMinusOneTolerance) {
    ZorWBEnvironment environment(0);
    environment.SetTolerance(1e-9);
    EXPECT_EQ(environment.ResolveTolerance(-1.0), 1e-9);
    EXPECT_EQ(environment.ResolveTolerance(0.5), 0.5);
}

TEST(ZorWBCheckLevel, FirstThresholdIsPlainLaterOnesWithinTheMajorRelease) {
    EXPECT_TRUE(ZorWBCheckLevel(52690944u, 52690944u));
    EXPECT_TRUE(ZorWBCheckLevel(52690944u, 52363264u));
    EXPECT_FALSE(ZorWBCheckLevel(52363263u, 52363264u));
    EXPECT_FALSE(ZorWBCheckLevel(52363263u, 52690944u));

    const unsigned int onlyEnd[] = {ZorWBLevelListEnd};
    EXPECT_FALSE(ZorWBCheckLevel(0xFFFFFFFFu, onlyEnd));
    EXPECT_FALSE(ZorWBCheckLevel(5u, nullptr));

    // A later threshold counts only inside its own major release.
    const unsigned int list[] = {0x03300000u, 0x03200005u, ZorWBLevelListEnd};
    EXPECT_TRUE(ZorWBCheckLevel(0x03200007u, list));
    EXPECT_FALSE(ZorWBCheckLevel(0x03210000u, list));
    EXPECT_TRUE(ZorWBCheckLevel(0x03310000u, list));
    EXPECT_FALSE(ZorWBCheckLevel(0x03200004u, list));

    EXPECT_FALSE(ZorWBCheckLevel(0xFFFFFFFFu, 0xFFFFFFFFu));
    EXPECT_TRUE(ZorWBCheckLevel(ZorWBLevel::All, ZorWBLevel::EmptySegmentNoBuffer));
}

TEST(ZorWBEnvironment, MaximumEnumerationSizeStaysWithinTheListLimit) {
    ZorWBEnvironment environment;
    environment.SetMaxEnumSize(ZorWBMaxEnumSize);
    EXPECT_EQ(environment.GetMaxEnumSize(), ZorWBMaxEnumSize);
    environment.SetMaxEnumSize(ZorWBMaxEnumSize + 1);
    EXPECT_EQ(environment.GetMaxEnumSize(), ZorWBMaxEnumSize);
    environment.SetMaxEnumSize(2147483647);
    EXPECT_EQ(environment.GetMaxEnumSize(), ZorWBMaxEnumSize);
    environment.SetMaxEnumSize(-1);
    EXPECT_EQ(environment.GetMaxEnumSize(), 0);

    // A huge size still lists no more than the limit: a wider integer
    // enumeration stays an interval.
    environment.SetMaxEnumSize(2147483647);
    ZorWBIntegerEnum wide;
    wide.SetAsIntegerInterval({0, 1 << 30});
    wide.Correct(environment);
    EXPECT_EQ(wide.GetRep(), ZorWBEnumInterval);
    ZorWBIntegerEnum narrow;
    narrow.SetAsIntegerInterval({0, 999});
    narrow.Correct(environment);
    EXPECT_EQ(narrow.GetRep(), ZorWBEnumList);
    EXPECT_EQ(narrow.GetSize(), 1000);
}
