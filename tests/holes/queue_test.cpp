#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "holes_model.h"
#include "holes_test_util.h"

namespace {

// A view into the heap, for checking handles and order after each call.
class QueueView : public holes_model::QueueView {
public:
    using holes_model::QueueView::QueueView;
    std::int32_t Size() const { return m_lSize; }
    const tagPQCELL& Cell(std::int32_t i) const { return m_pCells[i]; }

    // The same cells in the same places as the model, every handle variable as the model has it,
    // and the heap's invariants.
    ::testing::AssertionResult Matches(const holes_model::QueueModel& model, const std::vector<long*>& handles) const
    {
        const std::string broken = Invariants(*this) + Against(*this, model, handles);
        HOLES_REQUIRE(broken.empty()) << ": " << broken;
        return ::testing::AssertionSuccess();
    }
};

TEST(PriorityQueue, NewQueueIsEmpty)
{
    YXPriorityQueue q;
    long value = 7;
    unsigned long data = 7;
    EXPECT_EQ(q.IsEmpty(), 1);
    EXPECT_EQ(q.ReadHead(value, data), 0);
    EXPECT_EQ(q.RemoveHead(value, data), -1);
    EXPECT_EQ(q.RemoveAddHead(value, data, 1, 1, nullptr), -1);
    EXPECT_EQ(q.IsEmpty(), 1);
    EXPECT_EQ(value + static_cast<long>(data), 14);
}

// A negative increment is refused as one of 0 is: the capacity never shrinks.
TEST(PriorityQueue, IncrementOfZeroOrLessRefusesEveryCell)
{
    for (const long increment : {0L, -1L}) {
        YXPriorityQueue q(increment);
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_FALSE(q.AddValue(1, 1, nullptr));
        EXPECT_EQ(q.IsEmpty(), 1);
    }
}

// A sinking cell stops at a child of equal value and goes on past a smaller one; of two equal
// children the right one rises. The head of a heap built from the values (cell i holds data i)
// gets a larger value and sinks.
TEST(PriorityQueue, SinkingWalkAmongEqualValues)
{
    const struct {
        const char* what;
        std::vector<long> values;
        long sink;
        std::vector<unsigned long> after; // data by place, from cell 1
    } cases[] = {
        {"lone child equal", {0, 5}, 5, {0, 1}},
        {"left child equal and the smaller", {0, 5, 9}, 5, {0, 1, 2}},
        {"right child equal and the smaller", {0, 6, 5}, 5, {0, 1, 2}},
        {"two equal children below it", {0, 4, 4}, 5, {2, 1, 0}},
        {"grandchild equal", {0, 4, 9, 6, 7}, 6, {1, 0, 2, 3, 4}},
        {"every child smaller", {0, 4, 9, 6, 7}, 8, {1, 3, 2, 0, 4}},
    };
    for (const auto& c : cases) {
        QueueView q(10);
        for (std::size_t i = 0; i < c.values.size(); ++i) {
            ASSERT_TRUE(q.AddValue(c.values[i], static_cast<unsigned long>(i), nullptr));
        }
        q.ChangeValue(1, c.sink);
        std::vector<unsigned long> after;
        for (std::int32_t i = 1; i <= q.Size(); ++i) {
            after.push_back(q.Cell(i).dwData);
        }
        EXPECT_EQ(after, c.after) << c.what;
    }
}

// Long random sequences of every operation against the model: the same cells in the same places
// after each call, and every handle variable as the model has it, those of cells gone included. Some cells have no
// handle; values come from a narrow range, so that ties are frequent, and some are the 32-bit extremes, the smallest
// being the sentinel's own.
TEST(PriorityQueue, RandomOperationsAgainstTheModel)
{
    for (const std::uint32_t seed : {11U, 12U, 13U}) {
        std::mt19937 rng(seed);
        const auto draw = [&rng](std::size_t n) { return static_cast<std::size_t>(rng() % n); };
        QueueView q(7);
        holes_model::QueueModel model(7);
        holes_model::Handles handles(model);
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const std::size_t op = draw(100);
            const std::int32_t extreme = draw(2) == 0 ? INT32_MIN : INT32_MAX;
            const auto value = draw(50) == 0 ? extreme : static_cast<std::int32_t>(draw(draw(3) == 0 ? 200 : 6)) - 3;
            const auto data = static_cast<std::uint32_t>(step);
            long head = 0;
            unsigned long headData = 0;
            std::int32_t expected = 0;
            std::uint32_t expectedData = 0;
            if (op < 40 || model.Size() == 0) {
                const int h = handles.New(draw(4) != 0);
                ASSERT_TRUE(q.AddValue(value, data, handles.Pointer(h)));
                model.AddValue(value, data, h);
            } else if (op < 60) {
                ASSERT_EQ(q.RemoveHead(head, headData), 0);
                model.RemoveHead(expected, expectedData);
                ASSERT_EQ(head, expected);
                ASSERT_EQ(headData, expectedData);
            } else if (op < 70) {
                const int h = handles.New(true);
                ASSERT_EQ(q.RemoveAddHead(head, headData, value, data, handles.Pointer(h)), 0);
                model.RemoveAddHead(expected, expectedData, value, data, h);
                ASSERT_EQ(headData, expectedData);
            } else if (op < 99) {
                const auto k = static_cast<std::int32_t>(1 + draw(static_cast<std::size_t>(model.Size())));
                if (op < 85) {
                    ASSERT_EQ(q.RemoveCell(k), 0);
                    model.RemoveCell(k);
                } else {
                    q.ChangeValue(k, value);
                    model.ChangeValue(k, value);
                }
            } else if (draw(10) == 0) {
                q.ReInit();
                model.ReInit();
            }
            ASSERT_EQ(q.RemoveCell(q.Size() + 1), -1);
            ASSERT_TRUE(q.Matches(model, handles.All())) << "seed " << seed << " step " << step;
            ASSERT_EQ(q.ReadHead(head, headData), model.Size() == 0 ? 0 : -1);
        }
    }
}

// Only the head can be removed, and every speed manager of the process works in one record.
TEST(SpeedHoleManager, RemovesOnlyTheHeadIntoOneRecord)
{
    YXSpeedHoleManager a;
    YXSpeedHoleManager b;
    a.AddHole(100, 50);
    a.AddHole(300, 20);
    b.AddHole(900, 70);
    const tagFILEHOLE* fromA = a.RemoveHole(100, 10);
    ASSERT_NE(fromA, nullptr);
    EXPECT_EQ(*fromA, (tagFILEHOLE{110, 40}));
    EXPECT_EQ(b.RemoveHole(900, 20), fromA);
    EXPECT_EQ(*fromA, (tagFILEHOLE{920, 50}));
    EXPECT_EQ(a.RemoveHole(300, 20), nullptr); // not the largest: refused, though the head is read
    EXPECT_EQ(*fromA, (tagFILEHOLE{110, 40}));
    EXPECT_EQ(a.GetNumberOfHoles(), 2);
    EXPECT_EQ(a.GetHolesSize(), 60u);
}

// Of equal holes the heap decides: a sinking cell takes the right one of two equal children.
TEST(SpeedHoleManager, AmongEqualHolesTheHeapDecides)
{
    YXSpeedHoleManager m;
    for (const tagFILEHOLE h : {tagFILEHOLE{10, 9}, {20, 5}, {30, 5}, {40, 1}}) {
        m.AddHole(h.dwOffset, h.lSize);
    }
    m.RemoveHole(10, 9);
    EXPECT_EQ(m.GetBestHole(5), 30u);
}

// Random allocation and freeing against the model over a heap of negated sizes: the same hole
// is the answer, the same record comes back, and the same cells stand in the same places of the
// manager's queue after each call.
TEST(SpeedHoleManager, RandomHostAgainstTheModel)
{
    for (const std::uint32_t seed : {21U, 22U}) {
        std::mt19937 rng(seed);
        holes_model::SpeedView m;
        holes_model::SpeedModel model;
        std::uint32_t fileLength = 0;
        for (int step = 0; step < 20000 && !HasFailure(); ++step) {
            const auto size = static_cast<std::int32_t>(rng() % (rng() % 2 == 0 ? 100 : 5));
            const auto op = rng() % 100;
            if (op < 55) {
                ASSERT_TRUE(m.AddHole(fileLength, size));
                model.AddHole(fileLength, size);
                fileLength += static_cast<std::uint32_t>(size) + 1;
            } else if (op == 55) {
                m.ClearHoleList();
                model.ClearHoleList();
                model.footPrint = static_cast<std::int32_t>(rng() % 8);
                m.SetHoleFootPrint(model.footPrint);
            } else {
                const unsigned long answer = m.GetBestHole(size);
                ASSERT_EQ(answer, model.GetBestHole(size)) << "step " << step;
                // The hole asked for, or now and then another, which is refused.
                const auto offset =
                    static_cast<std::uint32_t>(answer == kNone || op < 60 ? rng() % (fileLength + 1) : answer);
                const tagFILEHOLE* rest = m.RemoveHole(offset, size); // size 0 gives the head back whole
                ASSERT_EQ(rest != nullptr, model.RemoveHole(offset, size)) << "step " << step;
                if (rest != nullptr) {
                    ASSERT_EQ(*rest, holes_model::SpeedModel::Removed());
                }
            }
            const std::string broken = m.Against(model);
            ASSERT_TRUE(broken.empty()) << "step " << step << ": " << broken;
        }
        // The whole heap, cell by cell: the holes come out in the model's order.
        std::int32_t value = 0;
        std::uint32_t offset = 0;
        while (model.queue.ReadHead(value, offset) && model.count > 0 && !HasFailure()) {
            ASSERT_EQ(m.GetBestHole(-value), offset);
            ASSERT_EQ(m.RemoveHole(offset, -value), nullptr);
            model.RemoveHole(offset, -value);
        }
        EXPECT_EQ(m.GetBestHole(0), kNone);
    }
}

} // namespace
