// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/NodeTable.h"

#include "platform/simulated/FakeTextServices.h"
#include "tests/support/Builders.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using ::testing::ElementsAre;

class NodeTableTest : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> namesInOrder(std::optional<std::uint32_t> guarded = {}) const {
        std::vector<std::string> names;
        for (const auto& shown : table.sorted(guarded))
            names.push_back(shown.longName);
        return names;
    }

    FakeTextServices text;
    NodeTable table{text, {}};
};

TEST_F(NodeTableTest, ordersNamesAsAFileBrowserWithTheGuardedNodeFirst) {
    table.upsert(node(1).named("node 10"));
    table.upsert(node(2).named("Node 9"));
    table.upsert(node(3).named("zebra"));
    table.upsert(node(4).named(""));

    EXPECT_THAT(namesInOrder(), ElementsAre("", "Node 9", "node 10", "zebra"));
    EXPECT_THAT(namesInOrder(3), ElementsAre("zebra", "", "Node 9", "node 10"));
    EXPECT_THAT(namesInOrder(99), ElementsAre("", "Node 9", "node 10", "zebra"));
}

TEST_F(NodeTableTest, replacesARecordAsAWhole) {
    EXPECT_TRUE(table.upsert(node(1).named("Fox").at(52, 5)));
    EXPECT_FALSE(table.upsert(node(1).named("Hare")));

    EXPECT_EQ(table.sorted({}).size(), 1U);
    EXPECT_EQ(table.find(1)->longName, "Hare");
    EXPECT_FALSE(table.find(1)->position);
}

TEST_F(NodeTableTest, aPositionIsNewUnlessItEqualsTheStoredOneInEveryField) {
    const auto first = positionAt(52, 5);
    auto again = first;
    again.id = Uuid::random();

    EXPECT_TRUE(table.upsert(node(1).named("Fox").at(first)));
    EXPECT_FALSE(table.upsert(node(1).named("Fox").at(first)));
    EXPECT_FALSE(table.upsert(node(1).named("Hare").at(first)));
    EXPECT_TRUE(table.upsert(node(1).named("Hare").at(again)));
    EXPECT_FALSE(table.upsert(node(1).named("Hare")));
    EXPECT_TRUE(table.upsert(node(1).named("Hare").at(again)));
}

TEST_F(NodeTableTest, namesAnyNumber) {
    table.upsert(node(1).named("Fox").shortNamed("F"));
    table.upsert(node(2).shortNamed("H"));
    table.upsert(node(0xAB));
    table.upsert(node(broadcastNodeNumber).named("Impostor"));

    EXPECT_EQ(table.displayName(1), "Fox");
    EXPECT_EQ(table.displayName(2), "H");
    EXPECT_EQ(table.displayName(0xAB), "!000000ab");
    EXPECT_EQ(table.displayName(0xABCD), "!0000abcd");
    EXPECT_EQ(table.displayName(0), "!00000000");
    EXPECT_EQ(table.displayName(0xFFFF'FFFE), "!fffffffe");
    EXPECT_EQ(table.displayName(broadcastNodeNumber), "Everyone");
}

/// The rule, written down as simply as possible.
std::vector<MeshNode> inOrder(const std::map<std::uint32_t, MeshNode>& nodes,
                              std::optional<std::uint32_t> guarded, const TextServices& text) {
    std::vector<MeshNode> sorted;
    for (const auto& [number, node] : nodes)
        sorted.push_back(node); // by number already
    std::ranges::stable_sort(sorted, {}, &MeshNode::longName);
    std::ranges::stable_sort(sorted, {},
                             [&](const MeshNode& node) { return text.collationKey(node.longName); });
    std::ranges::stable_partition(sorted, [&](const MeshNode& node) { return node.number == guarded; });
    return sorted;
}

TEST_F(NodeTableTest, keepsTheOrderWhateverHappens) {
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](std::uint32_t limit) {
        return static_cast<std::uint32_t>(random() % limit);
    };
    const std::array<std::string, 8> names{"", "Fox", "fox", "FOX 2", "fox 10", "fox 02", "Ägir", "zebra"};

    std::map<std::uint32_t, MeshNode> nodes;
    std::optional<std::uint32_t> guarded;
    for (int step = 0; step < 5000; ++step) {
        switch (below(100)) {
        case 0:
            nodes.clear();
            table.clear();
            break;
        case 1:
            guarded.reset();
            break;
        case 2:
        case 3:
            guarded = below(30);
            break;
        default: {
            const MeshNode changed = node(below(30)).named(names[below(names.size())]).hops(below(3));
            nodes[changed.number] = changed;
            table.upsert(changed);
        }
        }
        if (below(3) == 0) {
            ASSERT_EQ(table.sorted(guarded), inOrder(nodes, guarded, text)) << "step " << step;
        }
    }
}

} // namespace
} // namespace nightjar
