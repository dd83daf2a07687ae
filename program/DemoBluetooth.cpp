// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/DemoBluetooth.h"

#include <chrono>

namespace nightjar {

std::vector<SimulatedPeripheral> demoPeripherals() {
    using namespace std::chrono_literals;
    const auto meshtastic = Uuid::fromText("6BA1B218-15A8-461F-9FA8-5DCAE273EAFD");
    return {
        // Somebody takes the keys to the shed and brings them back.
        {.name = std::string(demoKeysName),
         .way = {{8, 2}, {14, 90}, {44, 90}, {50, 2}},
         .waySeconds = 300,
         .interval = 500ms},
        {.name = "BASE_0001",
         .serviceUUIDs = {meshtastic.value_or(Uuid())},
         .way = {{0, 4}},
         .interval = 900ms},
        {.name = "Living Room Lamp", .way = {{0, 5.5}}, .interval = 1200ms},
        {.name = "Headphones", .rssiAtOneMetre = -54, .way = {{0, 0.6}}, .interval = 700ms},
        // Worn from room to room.
        {.name = "Running Watch 3",
         .rssiAtOneMetre = -62,
         .way = {{0, 1}, {25, 1}, {40, 9}, {70, 9}, {85, 2}, {110, 1}},
         .waySeconds = 120,
         .interval = 800ms},
        {.name = "Hall Thermometer", .rssiAtOneMetre = -65, .way = {{0, 8}}, .interval = 2000ms},
        // A tag without a name.
        {.rssiAtOneMetre = -64, .way = {{0, 11}}, .interval = 1600ms},
        // A telephone that goes by a new address again and again.
        {.rssiAtOneMetre = -57, .way = {{0, 3}}, .interval = 600ms, .newAddressEvery = 90s},
    };
}

} // namespace nightjar
