// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/GuardProfile.h"
#include "core/mesh/MeshMath.h"
#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshNode.h"
#include "core/mesh/MeshPositionHistory.h"
#include "tests/support/Builders.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::positionAt;
using testing::startDate;

TEST(MeshNode, isStaleOnlyBeyondTheWindow) {
    using Reach = MeshNodeReachability;
    const struct {
        const char* what;
        std::optional<double> age;
        std::optional<std::uint32_t> hops;
        Reach expected;
    } cases[] = {
        {"never heard", {}, 0, Reach::stale()},
        {"at the window", 3600, 0, Reach::directlyHeard()},
        {"just beyond", 3600.001, 0, Reach::stale()},
        {"in the future", -50, 0, Reach::directlyHeard()},
        {"hops unknown", 10, {}, Reach::mesh({})},
        {"three hops", 10, 3, Reach::mesh(3)},
        {"three hops, long ago", 4000, 3, Reach::stale()},
    };
    for (const auto& [what, age, hops, expected] : cases) {
        MeshNode node = testing::node(1);
        node.hopsAway = hops;
        node.lastSeen = age.transform([](double seconds) { return startDate - Seconds{seconds}; });
        EXPECT_EQ(node.reachability(startDate), expected) << what;
    }
    EXPECT_NE(Reach::mesh(3), Reach::mesh({}));
}

TEST(MeshPositionHistory, keepsTheFixesOfOneNodeInOrderOfTime) {
    const auto late = positionAt(1, 1, Seconds{30});
    const auto firstOfTwo = positionAt(2, 2, Seconds{10});
    const auto secondOfTwo = positionAt(3, 3, Seconds{10});
    const auto early = positionAt(4, 4, Seconds{-10});
    const auto foreign = positionAt(5, 5, Seconds{20}, 43);
    const std::vector history{late, firstOfTwo, foreign, secondOfTwo, early};

    using MeshPositionHistory::positions;
    EXPECT_THAT(positions(42, history, {}), ElementsAre(early, firstOfTwo, secondOfTwo, late));
    EXPECT_THAT(positions(42, history, startDate + Seconds{10}), ElementsAre(firstOfTwo, secondOfTwo, late));
    EXPECT_THAT(positions(42, history, startDate + Seconds{10.5}), ElementsAre(late));
    EXPECT_THAT(positions(44, history, {}), IsEmpty());
    EXPECT_THAT(positions(42, {}, {}), IsEmpty());
}

TEST(MeshMath, measuresGreatCircles) {
    const struct {
        double fromLatitude, fromLongitude, toLatitude, toLongitude, metres, tolerance;
    } cases[] = {
        {52.52, 13.405, 52.52, 13.405, 0, 0},
        {0, 0, 0, 180, 20'015'087, 1},
        {90, 0, -90, 0, 20'015'087, 1},
        {0, 179.5, 0, -179.5, 111'195, 1}, // across the date line
        {52, 5, 53, 5, 111'194.93, 0.01},
        {52.5200066, 13.404954, 48.8566, 2.3522, 877'464, 1'000},
        {52.5200066, 13.404954, 52.5200076, 13.404954, 0.1112, 0.001},
    };
    for (const auto& [fromLatitude, fromLongitude, toLatitude, toLongitude, metres, tolerance] : cases) {
        const auto from = positionAt(fromLatitude, fromLongitude);
        const auto to = positionAt(toLatitude, toLongitude);
        EXPECT_NEAR(MeshMath::distanceMeters(from, to), metres, tolerance);
        EXPECT_EQ(MeshMath::distanceMeters(from, to), MeshMath::distanceMeters(to, from));
    }
}

TEST(MeshMath, givesANumberForOppositePoints) {
    // Rounding may lift the haversine above 1; a distance that is no number would be inside every radius.
    auto here = positionAt(0, 0);
    auto opposite = here;
    for (int i = 0; i < 90'000; ++i) {
        here.latitude = i / 1000.0;
        here.longitude = i / 777.0;
        opposite.latitude = -here.latitude;
        opposite.longitude = here.longitude - 180;
        ASSERT_NEAR(MeshMath::distanceMeters(here, opposite), 20'015'087, 1)
            << here.latitude << ' ' << here.longitude;
    }
}

TEST(MeshMessage, isRepeatedByItsPacketAndSender) {
    const auto message = testing::received("a", 7, 1);
    EXPECT_TRUE(isRepeat(testing::received("b", 7, 1), message));
    EXPECT_FALSE(isRepeat(testing::received("a", 7, 2), message));
    EXPECT_FALSE(isRepeat(testing::received("a", 8, 1), message));
    EXPECT_FALSE(isRepeat(testing::received("a", 0, 1), testing::received("a", 0, 1)));
}

TEST(GuardProfile, isFoundByItsRawValue) {
    for (const auto profile : guardProfiles)
        EXPECT_EQ(guardProfileFromRawValue(rawValue(profile)), profile);
    EXPECT_EQ(title(GuardProfile::bicycle), "Bicycle");
    EXPECT_EQ(systemImage(GuardProfile::general), "shield.checkered");
    for (const char* unknown : {"", "Bicycle", "bicycle ", "car"})
        EXPECT_FALSE(guardProfileFromRawValue(unknown)) << unknown;
}

} // namespace
} // namespace nightjar
