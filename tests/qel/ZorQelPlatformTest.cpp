#include <gtest/gtest.h>

#include <cstdlib>

#include "qel/ZorQelGetEnv.h"
#include "qel/ZorQelGlobalParameters.h"
#include "qel/ZorQelStream.h"

TEST(ZorQelGetEnv, ReadsTextAndIntegers) {
    ::setenv("ZORQEL_TEST_TEXT", "hello", 1);
    ::setenv("ZORQEL_TEST_NUMBER", "42", 1);
    ::setenv("ZORQEL_TEST_BAD", "4x", 1);
    ::unsetenv("ZORQEL_TEST_UNSET");
    EXPECT_EQ(ZorQelGetEnv("ZORQEL_TEST_TEXT"), "hello");
    EXPECT_EQ(ZorQelGetEnv("ZORQEL_TEST_UNSET"), "");
    EXPECT_EQ(ZorQelGetEnv(nullptr), "");
    EXPECT_EQ(ZorQelGetEnvI("ZORQEL_TEST_NUMBER"), 42);
    EXPECT_EQ(ZorQelGetEnvI("ZORQEL_TEST_BAD"), 0);
    EXPECT_EQ(ZorQelGetEnvI("ZORQEL_TEST_UNSET"), 0);
    EXPECT_EQ(ZorQelintMax, 2147483647);
    EXPECT_EQ(ZorQelintMin, -2147483647 - 1);
}

TEST(ZorQelMakePath, JoinsWithOneSeparator) {
    EXPECT_EQ(ZorQelMakePath("out", "log.WBGraph"), "out/log.WBGraph");
    EXPECT_EQ(ZorQelMakePath("out/", "log.WBGraph"), "out/log.WBGraph");
    EXPECT_EQ(ZorQelMakePath("", "log.WBGraph"), "log.WBGraph");
}

TEST(ZorQelGlobalParameters, DefaultsAndHostSettings) {
    ZorQelGlobalParameters& parameters = ZorQelGlobalParameters::GetGlobalParameters();
    parameters.Reset();
    EXPECT_EQ(parameters.GetQelFullOpenConfigurationLevel(), 0xFFFFFFFFu);
    EXPECT_FALSE(parameters.IsUseOldST());
    EXPECT_EQ(parameters.GetTraceLevel(), 0);
    ASSERT_NE(parameters.GetTraceStream(), nullptr);
    EXPECT_EQ(parameters.GetTraceStream()->GetTarget(), ZorQelStream::StandardOutput);

    ZorQelStream memory;
    memory.OpenMemory();
    parameters.SetTraceStream(&memory);
    parameters.SetUseOldST(true);
    parameters.SetQelFullOpenConfigurationLevel(0x031F0000);
    parameters.GetTraceStream()->Printf("%s=%d", "level", 3);
    EXPECT_EQ(memory.GetText(), "level=3");
    EXPECT_TRUE(parameters.IsUseOldST());
    EXPECT_EQ(&ZorQelGlobalParameters::GetGlobalParameters(), &parameters);
    parameters.Reset();
    EXPECT_EQ(parameters.GetTraceStream()->GetTarget(), ZorQelStream::StandardOutput);
}

TEST(ZorQelStream, ClosedStreamsRefuseToWrite) {
    ZorQelStream stream;
    EXPECT_FALSE(stream.Write("x"));
    EXPECT_FALSE(stream.Printf("%d", 1));
    EXPECT_FALSE(stream.OpenFile("/nonexistent-directory/x/y"));
    EXPECT_FALSE(stream.IsOpen());
}
