#include "trace/json_tree.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(JsonTree, KeepsTheWrittenFormOfANumber) {
    const auto node = parseJson("[1.50,2,-3,1e2,18446744073709551615]");
    ASSERT_TRUE(node);
    const auto& list = *node->as<JsonNode::Array>();
    EXPECT_EQ(list.at(0).as<JsonNode::Real>()->text, "1.50");
    EXPECT_EQ(list.at(1).as<JsonNode::Integer>()->value, 2);
    EXPECT_EQ(list.at(2).as<JsonNode::Integer>()->value, -3);
    EXPECT_EQ(list.at(3).as<JsonNode::Real>()->value, 100.0);
    EXPECT_EQ(list.at(4).number(), 18446744073709551615.0);
}

TEST(JsonTree, KeepsEveryMemberInItsOrder) {
    const auto node = parseJson(R"({"b":1,"a":2,"b":3})");
    ASSERT_TRUE(node);
    const auto& members = *node->as<JsonNode::Object>();
    ASSERT_EQ(members.size(), 3U);
    EXPECT_EQ(members[0].name, "b");
    EXPECT_EQ(members[1].name, "a");
    EXPECT_EQ(members[2].name, "b");
}

TEST(JsonTree, IsWrittenAsItWasRead) {
    const std::string text =
        R"({"a":[1,2.50,null,true,false,"é\n\"x\""],"b":{},"c":[],"d":{"e":[{"f":-1}]}})";
    EXPECT_EQ(written(*parseJson(text)), text);
}

TEST(JsonTree, WhatIsNotJsonIsNothing) {
    for (const char* const text :
         {"", "{", "nul", "{\"a\":1,}", "1 2", "\"\xFF\"", "[1e999]", "'a'"})
        EXPECT_FALSE(parseJson(text)) << text;
}

TEST(JsonTree, DeepNestingIsRefused) {
    const auto nested = [](std::size_t depth) {
        return std::string(depth, '[') + std::string(depth, ']');
    };
    EXPECT_TRUE(parseJson(nested(16)));
    EXPECT_FALSE(parseJson(nested(17)));
    EXPECT_FALSE(parseJson(std::string(100000, '[')));
}

TEST(JsonTree, WhatIsNoTextIsReplacedAndNotRefused) {
    EXPECT_EQ(jsonString("a\xFFz"), "\"a\xEF\xBF\xBDz\"");
}
