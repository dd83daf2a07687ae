// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/TrackedDevicesFile.h"

#include "core/base/AtomicFile.h"
#include "core/bluetooth/BluetoothJson.h"
#include "core/json/Decoder.h"
#include "core/json/Encoder.h"

#include <algorithm>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace nightjar {

namespace {

void keepFirstOfEach(std::vector<TrackedBluetoothDevice>& devices) {
    std::unordered_set<Uuid> seen;
    std::erase_if(devices, [&seen](const auto& device) { return !seen.insert(device.id).second; });
}

/// Half a place is none.
void dropHalfPlace(TrackedBluetoothDevice& device) {
    if (device.latitude.has_value() == device.longitude.has_value())
        return;
    device.latitude.reset();
    device.longitude.reset();
}

} // namespace

std::vector<TrackedBluetoothDevice> TrackedDevicesFile::load() {
    if (!m_path)
        return {};
    const auto text = readWholeFile(*m_path);
    auto devices =
        text ? json::Decoder(json::DateForm::secondsSince2001).decodeList<TrackedBluetoothDevice>(*text)
             : std::nullopt;
    if (!devices) {
        std::error_code ignored;
        m_isDamaged = std::filesystem::exists(*m_path, ignored);
        return {};
    }
    keepFirstOfEach(*devices);
    std::ranges::for_each(*devices, dropHalfPlace);
    return *std::move(devices);
}

std::expected<void, std::string> TrackedDevicesFile::save(std::span<const TrackedBluetoothDevice> devices) {
    if (!m_path)
        return std::unexpected("There is no home folder.");
    const auto text = json::Encoder(json::DateForm::secondsSince2001).encodeList(devices);
    if (!text)
        return std::unexpected(text.error());
    keepDamaged();
    return replaceFile(*m_path, *text);
}

void TrackedDevicesFile::keepDamaged() {
    if (!std::exchange(m_isDamaged, false))
        return;
    auto aside = *m_path;
    aside += ".damaged";
    std::error_code ignored;
    std::filesystem::rename(*m_path, aside, ignored);
}

} // namespace nightjar
