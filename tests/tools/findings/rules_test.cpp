#include "findings/rules.h"

#include <gtest/gtest.h>

#include "errors.h"

namespace {

TEST(Rules, AreReadBackAsTheyArePrinted)
{
    for (const tool::profile& p : tool::all_profiles()) {
        const tool::rules r = tool::rules_of_profile(p.name);
        EXPECT_EQ(to_json(tool::rules_from_json(to_json(r), tool::rules_of_profile("default"))), to_json(r));
    }
}

TEST(Rules, OfAChosenProfileKeepWhatTheFileSetsItself)
{
    const std::string text = R"({"profile": "solver", "coincident": 0.5})";
    const tool::rules closed = tool::rules_of_profile("closed");
    EXPECT_EQ(tool::rules_from_json(text, closed).profile, "solver");
    const tool::rules chosen = tool::rules_from_json(text, closed, true);
    EXPECT_EQ(chosen.profile, "closed");
    EXPECT_EQ(chosen.coincident, 0.5);
    EXPECT_EQ(chosen.of(tool::fault::inside_out), tool::severity::finding);
    EXPECT_EQ(chosen.limits_of(zeb::EL_TETRA4).bad, closed.limits_of(zeb::EL_TETRA4).bad);
    EXPECT_THROW(tool::rules_from_json(R"({"profile": "none"})", closed, true), tool::wrong_usage);
}

class WrongRules : public testing::TestWithParam<const char*> {};

TEST_P(WrongRules, AreRefused)
{
    EXPECT_THROW(tool::rules_from_json(GetParam(), tool::rules_of_profile("default")), tool::wrong_usage) << GetParam();
}

TEST(Rules, AreRefusedWithAllLimitsOfAKindThatDoNotAscend)
{
    try {
        tool::rules_from_json(R"({"quality": {"tetra": {"bad": 0.5}}})", tool::rules_of_profile("solver"));
        FAIL();
    } catch (const tool::wrong_usage& told) {
        EXPECT_STREQ(told.what(), "the rules: the limits of 'tetra' do not ascend: bad 0.5, warning 0.3, good 0.6");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WrongRules,
    testing::Values("", "[", "3", "[]", R"({"unknown": 1})", R"({"profile": "none"})", R"({"profile": 3})",
                    R"({"faults": 3})", R"({"faults": {"none": "off"}})", R"({"faults": {"inverted": "wrong"}})",
                    R"({"faults": {"inverted": 1}})", R"({"quality": {"vertex": {"bad": 0}}})",
                    R"({"quality": {"tetra": {"worst": 0}}})", R"({"quality": {"tetra": {"bad": 0.9}}})",
                    R"({"quality": {"tetra": {"bad": "0"}}})", R"({"quality": {"tetra": {"good": 2}}})",
                    R"({"coincident": -1})", R"({"coincident": null})"));

}  // namespace
