// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/network/LocalNetworkDevice.h"

#include "core/base/TextFolding.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

namespace nightjar {

namespace {

/// UTF-8 sorts by its bytes as by its code points.
void insertSorted(std::vector<std::string>& list, std::string_view text) {
    const auto place =
        std::ranges::lower_bound(list, text, {}, [](const auto& s) -> std::string_view { return s; });
    if (place == list.end() || *place != text)
        list.insert(place, std::string(text));
}

constexpr std::array<std::pair<std::string_view, std::string_view>, 15> readableNames{{
    {"_airplay._tcp", "AirPlay"},
    {"_raop._tcp", "AirPlay audio"},
    {"_companion-link._tcp", "Apple device"},
    {"_device-info._tcp", "Device information"},
    {"_workstation._tcp", "Computer"},
    {"_ipp._tcp", "Printer"},
    {"_ipps._tcp", "Printer"},
    {"_printer._tcp", "Printer"},
    {"_smb._tcp", "File sharing"},
    {"_ssh._tcp", "Remote login"},
    {"_http._tcp", "Web service"},
    {"_https._tcp", "Web service"},
    {"_homekit._tcp", "HomeKit"},
    {"_googlecast._tcp", "Google Cast"},
    {"_spotify-connect._tcp", "Spotify Connect"},
}};

void removeAll(std::string& text, std::string_view part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
}

std::string_view withoutOuterBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool containsAny(std::string_view key, std::initializer_list<std::string_view> parts) {
    return std::ranges::any_of(parts, [key](auto part) { return key.contains(part); });
}

} // namespace

std::string LocalNetworkDevice::identifier(std::string_view name, std::string_view domain) {
    return foldedText(name) + '|' + lowercasedText(domain);
}

std::string LocalNetworkDevice::readableServiceName(std::string_view serviceType) {
    const auto known =
        std::ranges::find(readableNames, serviceType, &std::pair<std::string_view, std::string_view>::first);
    if (known != readableNames.end())
        return std::string(known->second);
    std::string text(serviceType);
    removeAll(text, "._tcp");
    removeAll(text, "._udp");
    std::ranges::replace(text, '_', ' ');
    return capitalizedText(withoutOuterBlanks(text));
}

void LocalNetworkDevice::record(std::string_view serviceType, std::string_view interfaceName, Date at) {
    insertSorted(serviceTypes, serviceType);
    if (!interfaceName.empty())
        insertSorted(interfaceNames, interfaceName);
    lastSeen = at;
    isOnline = true;
}

LocalNetworkDeviceKind LocalNetworkDevice::kind() const {
    using Kind = LocalNetworkDeviceKind;
    const std::string key = foldedText(name);
    if (key.contains("macbook"))
        return Kind::laptop;
    if (containsAny(key, {"mac studio", "mac mini", "imac", "mac pro"}) || key.ends_with(" mac") ||
        key.starts_with("mac "))
        return Kind::computer;
    if (containsAny(key, {"apple tv", "appletv"}))
        return Kind::television;
    if (key.contains("homepod"))
        return Kind::speaker;

    const auto offers = [this](std::string_view type) {
        return std::ranges::find(serviceTypes, type) != serviceTypes.end();
    };
    if (offers("_ipp._tcp") || offers("_ipps._tcp") || offers("_printer._tcp"))
        return Kind::printer;
    if (offers("_workstation._tcp"))
        return Kind::computer;
    if (offers("_smb._tcp"))
        return Kind::storage;
    return offers("_raop._tcp") ? Kind::speaker : Kind::generic;
}

std::string LocalNetworkDevice::serviceSummary() const {
    std::string summary;
    for (const auto& type : serviceTypes) {
        if (!summary.empty())
            summary += ", ";
        summary += readableServiceName(type);
    }
    return summary;
}

} // namespace nightjar
