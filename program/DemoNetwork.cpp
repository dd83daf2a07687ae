// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/DemoNetwork.h"

namespace nightjar {

std::vector<SimulatedHost> demoHosts() {
    const std::vector<std::string> wire{"eth0"};
    const std::vector<std::string> air{"wlan0"};
    const std::vector<std::string> both{"eth0", "wlan0"};
    return {
        {.name = std::string(demoPrinterName),
         .types = {"_ipp._tcp", "_printer._tcp"},
         .interfaces = wire,
         .stays = {{1, 5}, {75, 300}},
         .roundSeconds = 300},
        // Loses its connection again and again, for a few seconds each time.
        {.name = std::string(demoSpeakerName),
         .types = {"_raop._tcp", "_spotify-connect._tcp"},
         .interfaces = air,
         .stays = {{1.5, 12}, {15, 26}, {29, 54}, {58, 90}},
         .roundSeconds = 90},
        {.name = "Studio Mac", .types = {"_ssh._tcp", "_smb._tcp", "_workstation._tcp"}, .interfaces = both},
        {.name = "Ben MacBook Pro", .types = {"_companion-link._tcp", "_airplay._tcp"}, .interfaces = air},
        {.name = "Living Room Apple TV",
         .types = {"_airplay._tcp", "_companion-link._tcp"},
         .interfaces = wire},
        {.name = "HomePod", .types = {"_raop._tcp", "_homekit._tcp"}, .interfaces = air},
        {.name = "Archive", .types = {"_smb._tcp", "_http._tcp", "_device-info._tcp"}, .interfaces = wire},
        {.name = "Attic", .types = {"_ssh._tcp", "_workstation._tcp"}, .interfaces = wire},
        {.name = "Bedroom Screen", .types = {"_googlecast._tcp"}, .interfaces = air},
        {.name = "Hallway Light", .types = {"_homekit._tcp"}, .interfaces = air},
        {.name = "Label Printer", .types = {"_ipps._tcp", "_https._tcp"}, .interfaces = air},
        {.name = "Weather Station <roof>", .types = {"_http._tcp"}, .interfaces = wire},
    };
}

} // namespace nightjar
