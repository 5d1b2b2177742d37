#include <gtest/gtest.h>

#include "expressions/ZorWBFactory.h"
#include "output/WBx2JSON.h"

TEST(WBx2JSONSmoke, IntegerConstant) {
    ZorWBFactory factory;
    ZorWBExpression* five = factory.CreateIntegerConstant(5);
    WBx2JSON writer(factory);
    writer.Append(five);
    ZorQelString text;
    EXPECT_EQ(writer.WriteToString(text), 1);
    int t = five->GetTag();
    std::string expected = "{\"ExprTags\":[" + std::to_string(t) +
                           "],\"Exprs\":[{\"Tag\":" + std::to_string(t) +
                           ",\"Type\":2,\"ValData\":5,\"ValType\":1}],\"VersionStr\":3}";
    EXPECT_STREQ(text.GetString(), expected.c_str());
}
