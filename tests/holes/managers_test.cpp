#include <gtest/gtest.h>

#include <memory>

#include "holes_test_util.h"

using namespace holes_test;

namespace {

struct Destroy {
    void operator()(YXHoleManager* p) const { DestroyHoleManager(&p); }
};
using ManagerPtr = std::unique_ptr<YXHoleManager, Destroy>;

class EveryManager : public ::testing::TestWithParam<unsigned short> {
protected:
    ManagerPtr Make() const { return ManagerPtr(CreateHoleManager(GetParam())); }
};

// A hole of 100 under each foot print: which requests it takes.
TEST_P(EveryManager, FootPrintRule)
{
    const struct {
        long footPrint;
        long request;
        bool taken;
    } cases[] = {
        {0, 100, true}, {0, 99, true},   {0, 101, false}, {10, 100, true},
        {10, 90, true}, {10, 91, false}, {10, 99, false}, {10, 1, true},
    };
    for (const auto& c : cases) {
        ManagerPtr m = Make();
        m->SetHoleFootPrint(c.footPrint);
        m->AddHole(4000, 100);
        EXPECT_EQ(m->GetBestHole(c.request), c.taken ? 4000u : kNone)
            << "foot print " << c.footPrint << ", request " << c.request;
    }
}

TEST_P(EveryManager, FootPrintOutlivesTheListAndOnlyChangesLaterAnswers)
{
    ManagerPtr m = Make();
    EXPECT_EQ(m->GetHoleFootPrint(), 0);
    m->AddHole(0, 100);
    EXPECT_EQ(m->GetBestHole(95), 0u);
    m->SetHoleFootPrint(10);
    EXPECT_EQ(m->GetNumberOfHoles(), 1);
    EXPECT_EQ(m->GetHolesSize(), 100u);
    EXPECT_EQ(m->GetBestHole(95), kNone);
    EXPECT_TRUE(m->ClearHoleList());
    EXPECT_EQ(m->GetHoleFootPrint(), 10);
    EXPECT_EQ(m->GetNumberOfHoles(), 0);
    EXPECT_EQ(m->GetHolesSize(), 0u);
    EXPECT_TRUE(m->AddHole(500, 20));
    EXPECT_EQ(m->GetBestHole(20), 500u);
}

// Sizes and sums are 32-bit on every build: the sum wraps, and "none" is 0xFFFFFFFF.
TEST_P(EveryManager, ThirtyTwoBitArithmetic)
{
    ManagerPtr m = Make();
    m->AddHole(0, 0x7FFFFFFF);
    m->AddHole(0x7FFFFFFF, 0x7FFFFFFF);
    m->AddHole(0x40000000, 2);
    EXPECT_EQ(m->GetHolesSize(), 0u);
    m->ClearHoleList();
    m->AddHole(0, 10);
    EXPECT_EQ(m->GetBestHole(11), 0xFFFFFFFFUL);
    // Request plus foot print is a 32-bit sum too: past the top it wraps below every hole.
    m->SetHoleFootPrint(0x7FFFFFFF);
    EXPECT_EQ(m->GetBestHole(2), 0u);
    EXPECT_EQ(m->GetBestHole(0), kNone);
}

INSTANTIATE_TEST_SUITE_P(Holes, EveryManager, ::testing::Values(YXHOLEMANAGER_SPEED, YXHOLEMANAGER_EFFICIENT),
                         [](const ::testing::TestParamInfo<unsigned short>& kind) {
                             return kind.param == YXHOLEMANAGER_SPEED ? "Speed" : "Efficient";
                         });

TEST(HoleManagerCreation, KindsAndDestruction)
{
    EXPECT_EQ(CreateHoleManager(0), nullptr);
    EXPECT_EQ(CreateHoleManager(3), nullptr);
    YXHoleManager* speed = CreateHoleManager(YXHOLEMANAGER_SPEED);
    YXHoleManager* efficient = CreateHoleManager(YXHOLEMANAGER_EFFICIENT);
    EXPECT_NE(dynamic_cast<YXSpeedHoleManager*>(speed), nullptr);
    EXPECT_NE(dynamic_cast<YXEfficientHoleManager*>(efficient), nullptr);
    efficient->AddHole(1, 1); // destroyed with its memory
    EXPECT_FALSE(DestroyHoleManager(&speed));
    EXPECT_EQ(speed, nullptr);
    EXPECT_FALSE(DestroyHoleManager(&efficient));
    EXPECT_EQ(efficient, nullptr);
    EXPECT_FALSE(DestroyHoleManager(&speed));
}

} // namespace
