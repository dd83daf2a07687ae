// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/LocalNetworkRows.h"

#include "ui/text/ShownText.h"

#include <algorithm>

namespace nightjar {

namespace {

QString caption(const LocalNetworkDevice& device, const QString& lastSeen) {
    if (!device.isOnline)
        return QStringLiteral("Last seen ") + lastSeen;
    const QString services = shownLine(device.serviceSummary());
    return services.isEmpty() ? QStringLiteral("Available now") : services;
}

} // namespace

Row localNetworkDeviceRow(const LocalNetworkDevice& device, const QString& lastSeen) {
    Row row{.symbol = device.isOnline ? QStringLiteral("network") : QStringLiteral("network.slash"),
            .tint = device.isOnline ? Tint::green : Tint::secondary,
            .title = shownLine(device.name),
            .caption = caption(device, lastSeen)};
    if (device.lossAlertEnabled)
        row.badges.push_back({QStringLiteral("bell.badge.fill"), Tint::orange,
                              QStringLiteral("Network departure alert enabled")});
    else if (device.isTracked)
        row.badges.push_back(
            {QStringLiteral("checkmark.circle.fill"), Tint::blue, QStringLiteral("Tracked")});
    return row;
}

std::vector<RowSection> localNetworkSections(const std::vector<LocalNetworkDevice>& devices) {
    std::vector<RowSection> sections{{QStringLiteral("Tracked"), {}},
                                     {QStringLiteral("Available now"), {}},
                                     {QStringLiteral("Seen before"), {}}};
    for (const auto& device : devices)
        sections[device.isTracked ? 0 : device.isOnline ? 1 : 2].ids.push_back(device.id);
    return sections;
}

std::string selectFirstTrackedLocalNetworkDeviceIfNeeded(const std::string& selectedID,
                                                         const std::vector<LocalNetworkDevice>& devices) {
    if (std::ranges::find(devices, selectedID, &LocalNetworkDevice::id) != devices.end())
        return selectedID;
    const auto tracked = std::ranges::find_if(devices, &LocalNetworkDevice::isTracked);
    return tracked == devices.end() ? std::string() : tracked->id;
}

QString kindSymbol(const LocalNetworkDevice& device) {
    const auto name = symbolName(device.kind());
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

QString domainText(const LocalNetworkDevice& device) {
    return device.domain.empty() ? QStringLiteral("Local") : shownLine(device.domain);
}

QString interfaceText(const LocalNetworkDevice& device) {
    std::string names;
    for (const auto& name : device.interfaceNames)
        names += names.empty() ? name : ", " + name;
    return names.empty() ? QStringLiteral("Not reported") : shownLine(names);
}

} // namespace nightjar
