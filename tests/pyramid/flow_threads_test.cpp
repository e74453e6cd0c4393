// Calls at once on the same pyramids, each with a state of its own.
#include <thread>

#include "pyramid/flow_fixture.hpp"

namespace lumcv::test::flow {
namespace {

TEST(FlowQuickThreads, CallsAtOnceGiveTheSameBytes)
{
    forEachType([]<class T>() {
        Pyramid<T> first({90, 80}, 2), second({90, 80}, 2);
        first.draw(waves());
        second.draw(waves(2.3, -1.4));
        std::vector<Point> points;
        for (int i = 0; i < 60; ++i) {
            const auto number = static_cast<Lum32f>(i);
            points.push_back({number * 1.7f - 5, 85 - number * 1.6f});
        }
        const auto found = [&] {
            const Operands operands = follow(first, second, points, {9, 2});
            std::vector<Followed> results;
            for (int i = 0; i < operands.count(); ++i) {
                results.push_back(operands[i]);
            }
            return results;
        };
        const std::vector<Followed> alone = found();
        std::vector<Followed> together[2];
        std::vector<std::thread> threads;
        for (std::vector<Followed>& results : together) {
            threads.emplace_back([&] { results = found(); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const std::vector<Followed>& results : together) {
            ASSERT_EQ(results.size(), alone.size());
            for (std::size_t i = 0; i < alone.size(); ++i) {
                EXPECT_TRUE(sameFollowed(results[i], alone[i])) << "point " << i;
            }
        }
    });
}

}  // namespace
}  // namespace lumcv::test::flow
