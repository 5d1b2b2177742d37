#include <gtest/gtest.h>

#include "WbxRunner.h"

TEST(Wbx, VersionNamesTheDefaultBehaviourLevel) {
    WbxRun run = RunWbx({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("wbx (ZorWBx)"), std::string::npos);
    EXPECT_NE(run.out.find("default behaviour level: 0xffffffff"), std::string::npos);
}

TEST(Wbx, HelpListsTheCommands) {
    WbxRun run = RunWbx({"--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("wbx --version"), std::string::npos);
}

TEST(Wbx, UnknownCommandsAndMissingCommandsAreUsageErrors) {
    WbxRun unknown = RunWbx({"frobnicate"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "wbx: unknown command 'frobnicate' (see wbx --help)\n");
    WbxRun none = RunWbx({});
    EXPECT_EQ(none.status, 2);
}
