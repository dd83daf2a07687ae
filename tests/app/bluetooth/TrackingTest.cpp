// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/BluetoothRig.h"

#include "core/base/AtomicFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::StartsWith;

const Uuid keys = deviceID(1);
const Uuid bicycle = deviceID(2);

class TrackingTest : public ::testing::Test, protected BluetoothRig {
protected:
    TrackingTest() { host.setApplicationSupportFolder(m_folder.path()); }

    [[nodiscard]] const TrackedBluetoothDevice& tracked(const Uuid& id) const {
        return *manager->trackedDeviceWith(id);
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& device : manager->trackedDevices())
            names.push_back(device.name);
        return names;
    }
    [[nodiscard]] std::string saved() const {
        return readWholeFile(*manager->trackedDevicesURL()).value_or("nothing");
    }
    void locate(double latitude, Seconds age = Seconds{0}, double accuracy = 20) {
        location.locate({{.latitude = 1, .longitude = 1, .timestamp = scheduler.now()},
                         {.latitude = latitude,
                          .longitude = 5,
                          .horizontalAccuracy = accuracy,
                          .timestamp = scheduler.now() - age}});
    }

    TemporaryFolder m_folder;
};

TEST_F(TrackingTest, aNewDeviceStartsAsItWasHeard) {
    scan();
    locate(52);
    hear(keys, -67, "Tag");
    const auto heard = scheduler.now();
    pass(3s);
    manager->track(*manager->deviceWith(keys));

    const TrackedBluetoothDevice expected{.id = keys,
                                          .name = "Tag",
                                          .discoveredName = "Tag",
                                          .addedAt = heard + 3s,
                                          .lastSeen = heard,
                                          .lastRSSI = -67,
                                          .latitude = 52,
                                          .longitude = 5};
    EXPECT_TRUE(tracked(keys) == expected);
    EXPECT_EQ(manager->state(), "Tracking Tag");
    EXPECT_EQ(manager->trackedDevicesURL(), m_folder.path() / "Nightjar" / "tracked-bluetooth-devices.json");

    manager->track(*manager->deviceWith(keys));
    EXPECT_EQ(manager->state(), "Already tracking Tag");
    EXPECT_EQ(manager->trackedDevices().size(), 1U);

    create();
    ASSERT_EQ(manager->trackedDevices().size(), 1U);
    EXPECT_TRUE(tracked(keys) == expected);
}

TEST_F(TrackingTest, theListIsSortedWhenADeviceIsAddedOnly) {
    scan();
    trackHeard(deviceID(1), "node 10");
    trackHeard(deviceID(2), "Node 9");
    trackHeard(deviceID(3), "alpha");
    EXPECT_THAT(names(), ElementsAre("alpha", "Node 9", "node 10"));
    manager->renameTrackedDevice(deviceID(3), " zulu ");
    manager->renameTrackedDevice(deviceID(99), "nobody");
    EXPECT_THAT(names(), ElementsAre(" zulu ", "Node 9", "node 10"));
    EXPECT_EQ(tracked(deviceID(3)).discoveredName, "alpha");
    create();
    EXPECT_THAT(names(), ElementsAre(" zulu ", "Node 9", "node 10"));

    manager->startScanning();
    trackHeard(deviceID(4), "mike");
    EXPECT_EQ(names().back(), "node 10");
    manager->stopTracking(deviceID(2));
    for (const auto number : {1U, 3U, 4U})
        EXPECT_EQ(tracked(deviceID(number)).id, deviceID(number));
    EXPECT_EQ(manager->trackedDeviceWith(deviceID(2)), nullptr);
}

TEST_F(TrackingTest, whatIsHeardIsSavedEveryFiveSecondsAtMost) {
    scan();
    trackHeard(keys);
    const auto atFirst = saved();
    pass(2s);
    hear(keys, -40);
    pass(2s);
    hear(keys, -41);
    EXPECT_EQ(tracked(keys).lastRSSI, -41);
    EXPECT_EQ(saved(), atFirst);
    pass(2s);
    hear(keys, -42);
    EXPECT_THAT(saved(), ::testing::HasSubstr("\"lastRSSI\":-42"));
    // A clock that is set back must not keep anything from being saved.
    scheduler.setDate(scheduler.now() - 24h);
    pass(5s);
    hear(keys, -43);
    EXPECT_THAT(saved(), ::testing::HasSubstr("\"lastRSSI\":-43"));
}

TEST_F(TrackingTest, aFileThatCannotBeWrittenIsToldOfAndTriedAgain) {
    const auto obstacle = m_folder.path() / "Nightjar";
    std::ofstream(obstacle) << "in the way";
    scan();
    trackHeard(keys);
    EXPECT_THAT(manager->errorMessage().value_or(""),
                StartsWith("Could not save the tracked Bluetooth devices: "));
    EXPECT_EQ(manager->trackedDevices().size(), 1U);

    std::filesystem::remove(obstacle);
    manager->setErrorMessage({});
    pass(2s);
    hear(keys);
    EXPECT_EQ(saved(), "nothing") << "not more often than every 5 s";
    pass(3s);
    hear(keys);
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_NE(saved(), "nothing");
}

TEST_F(TrackingTest, withoutAHomeTheDevicesAreTrackedAllTheSame) {
    host.setApplicationSupportFolder({});
    scan();
    trackHeard(keys);
    EXPECT_EQ(manager->trackedDevices().size(), 1U);
    EXPECT_EQ(manager->trackedDevicesURL(), std::nullopt);
    EXPECT_THAT(manager->errorMessage().value_or(""),
                StartsWith("Could not save the tracked Bluetooth devices: "));
}

TEST_F(TrackingTest, onlyARecentPlaceIsTaken) {
    struct Row {
        double latitude;
        Seconds age;
        double accuracy;
        double expected;
    };
    scan();
    locate(50);
    trackHeard(keys);
    for (const auto& [latitude, age, accuracy, expected] :
         {Row{51, 299s, 0, 51}, Row{52, 300s, 20, 51}, Row{53, -299s, 20, 53}, Row{54, -300s, 20, 53},
          Row{55, 0s, -1, 53}, Row{95, 0s, 20, 53}, Row{NAN, 0s, 20, 53}, Row{56, 10min, 20, 53}}) {
        pass(2s);
        // Whatever the fix before was, it is too old by now.
        scheduler.setDate(scheduler.now() + 24h);
        locate(latitude, age, accuracy);
        hear(keys);
        EXPECT_EQ(tracked(keys).latitude, expected) << latitude;
        EXPECT_EQ(tracked(keys).longitude, 5);
    }
    location.locate({});
}

TEST_F(TrackingTest, aFixIsAskedForEveryFiveMinutesAtMost) {
    scan();
    trackHeard(keys);
    EXPECT_EQ(location.authorizationRequests(), 1);
    EXPECT_EQ(location.locationRequests(), 0);
    location.setAuthorization(LocationAuthorization::authorizedAlways);
    EXPECT_EQ(location.locationRequests(), 1);
    for (int i = 0; i < 149; ++i) {
        pass(2s);
        hear(keys);
    }
    EXPECT_EQ(location.locationRequests(), 1);
    pass(2s);
    hear(keys);
    EXPECT_EQ(location.locationRequests(), 2);
    EXPECT_EQ(location.wishes().accuracy, 100);
    EXPECT_EQ(location.wishes().distanceFilter, 50);

    hear(bicycle);
    pass(10min);
    hear(bicycle);
    EXPECT_EQ(location.locationRequests(), 2) << "nobody asks for a device that is not tracked";
    EXPECT_EQ(location.stops(), 0);
    manager->stopTracking(bicycle);
    manager->stopTracking(keys);
    EXPECT_EQ(location.stops(), 1);
}

TEST_F(TrackingTest, thePlaceIsAskedForAtTheStartWhenSomethingIsTracked) {
    struct Row {
        LocationAuthorization authorization;
        int authorizationRequests;
        int locationRequests;
    };
    create();
    EXPECT_EQ(location.authorizationRequests(), 0);
    manager->startScanning();
    hear(keys);
    location.setAuthorization(LocationAuthorization::denied);
    manager->track(*manager->deviceWith(keys));
    EXPECT_EQ(location.authorizationRequests() + location.locationRequests(), 0);

    location.setAuthorization(LocationAuthorization::notDetermined);
    create();
    EXPECT_EQ(location.authorizationRequests(), 1);
    location.setAuthorization(LocationAuthorization::authorizedAlways);
    const int before = location.locationRequests();
    create();
    EXPECT_EQ(location.locationRequests(), before + 1);
    EXPECT_EQ(location.authorizationRequests(), 1);
}

TEST_F(TrackingTest, aLocationErrorIsToldUnlessItPasses) {
    create();
    location.fail({.isTemporary = true, .description = "Wait."});
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    location.fail({.description = "No positioning hardware."});
    EXPECT_EQ(manager->errorMessage(), "The Mac's location is unavailable: No positioning hardware.");
}

} // namespace
} // namespace nightjar
