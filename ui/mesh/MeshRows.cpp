// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MeshRows.h"

#include "core/base/Text.h"
#include "radio/SerialPorts.h"
#include "ui/text/ShownText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace nightjar::MeshRows {

namespace {

QString notReported() {
    return QStringLiteral("Not reported");
}

std::vector<std::string> idsOf(const std::vector<MeshNode>& nodes, std::optional<std::uint32_t> without) {
    std::vector<std::string> ids;
    ids.reserve(nodes.size());
    for (const auto& node : nodes) {
        if (node.number != without)
            ids.push_back(idOf(node.number));
    }
    return ids;
}

} // namespace

std::string idOf(std::uint32_t number) {
    return std::to_string(number);
}

std::optional<std::uint32_t> numberOf(const std::string& id) {
    std::uint32_t number = 0;
    const auto* end = id.data() + id.size();
    const auto [last, error] = std::from_chars(id.data(), end, number);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

QString hexName(std::uint32_t number) {
    return QStringLiteral("!%1").arg(number, 8, 16, QLatin1Char('0'));
}

QString title(const MeshNode& node) {
    // A name of nothing but blanks is none.
    for (const auto* name : {&node.longName, &node.shortName}) {
        if (!trimmed(*name).empty())
            return shownLine(*name);
    }
    return hexName(node.number);
}

QString identity(const MeshNode& node) {
    if (node.longName.empty() && node.shortName.empty())
        return {};
    if (node.longName.empty() || node.shortName.empty())
        return hexName(node.number);
    return QStringLiteral("%1 · %2").arg(shownLine(node.shortName), hexName(node.number));
}

Role roleOf(const NightjarModel& model, std::uint32_t number) {
    if (model.guardedNodeID() == number && model.guardProfile() == GuardProfile::bicycle)
        return Role::bicycle;
    return model.localNodeID() == number ? Role::base : Role::other;
}

QString symbolOf(Role role) {
    switch (role) {
    case Role::bicycle:
        return QStringLiteral("bicycle");
    case Role::base:
        return QStringLiteral("cable.connector");
    case Role::other:
        break;
    }
    return QStringLiteral("sensor.tag.radiowaves.forward.fill");
}

Tint tintOf(Role role) {
    return role == Role::bicycle ? Tint::orange : Tint::blue;
}

Row nodeRow(const MeshNode& node, bool isBike, bool isBase, const ViewContext& context) {
    const Role role = isBike ? Role::bicycle : isBase ? Role::base : Role::other;
    Row row{.symbol = symbolOf(role),
            .tint = tintOf(role),
            .title = title(node),
            .caption = node.lastSeen ? context.relativeTime(*node.lastSeen) : QStringLiteral("Not seen")};
    if (node.reachability(context.now()) == MeshNodeReachability::directlyHeard())
        row.badges.push_back({QStringLiteral("dot.radiowaves.left.and.right"), Tint::green,
                              QStringLiteral("Directly heard by the base")});
    if (node.position)
        row.badges.push_back(
            {QStringLiteral("location.fill"), Tint::secondary, QStringLiteral("Has a position")});
    return row;
}

QString lastSeen(const MeshNode& node, const ViewContext& context) {
    return node.lastSeen ? context.relativeTime(*node.lastSeen) : QStringLiteral("Not seen");
}

QString connectionDescription(const MeshNode& node, std::optional<std::uint32_t> base, Date now) {
    if (base == node.number)
        return QStringLiteral("USB base");
    const auto reachability = node.reachability(now);
    switch (reachability.kind) {
    case MeshNodeReachability::Kind::directlyHeard:
        return QStringLiteral("Directly heard");
    case MeshNodeReachability::Kind::stale:
        return QStringLiteral("Not heard recently");
    case MeshNodeReachability::Kind::mesh:
        break;
    }
    if (!reachability.hops)
        return QStringLiteral("Through the mesh");
    return QStringLiteral("%1 hops").arg(*reachability.hops);
}

QString power(const MeshNode& node) {
    if (!node.batteryLevel)
        return notReported();
    // Radios without a battery report more than a full one.
    if (*node.batteryLevel > 100)
        return QStringLiteral("External power");
    return QStringLiteral("%1 %").arg(*node.batteryLevel);
}

QString signal(const MeshNode& node) {
    if (!node.signalToNoise || !std::isfinite(*node.signalToNoise))
        return notReported();
    // Qt would round -7.25 away from zero, unlike everything else that prints it.
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.1f dB", static_cast<double>(*node.signalToNoise));
    return QString::fromLatin1(text.data());
}

QString degrees(double value) {
    return QString::number(value, 'f', 5);
}

QString metres(double value) {
    if (!std::isfinite(value))
        return notReported();
    if (value >= 10'000)
        return QStringLiteral("%1 km").arg(value / 1000, 0, 'f', 1);
    return QStringLiteral("%1 m").arg(value, 0, 'f', 0);
}

QString portName(const NightjarModel& model, const std::string& port) {
    const auto known = model.knownBaseNames().find(port);
    return shownLine(known == model.knownBaseNames().end() ? SerialPorts::displayName(port) : known->second);
}

QString channelName(const NightjarModel& model, std::uint32_t channel) {
    const auto known = model.channels().find(channel);
    if (known == model.channels().end() || known->second.empty())
        return QStringLiteral("Channel %1").arg(channel);
    return shownLine(known->second);
}

std::vector<RowSection> sections(const NightjarModel& model) {
    const auto guarded = model.guardedNodeID();
    std::vector<RowSection> sections;
    if (find(model, guarded))
        sections.push_back({QStringLiteral("Guarded device"), {idOf(*guarded)}});
    auto nearby = idsOf(model.directlyHeardNodes(), guarded);
    if (const auto base = model.localNodeID(); base != guarded && find(model, base))
        nearby.insert(nearby.begin(), idOf(*base));
    sections.push_back({QStringLiteral("Nearby · directly heard"), std::move(nearby)});
    sections.push_back({QStringLiteral("Mesh nodes"), idsOf(model.otherMeshNodes(), guarded)});
    return sections;
}

bool hasRemoteNodes(const NightjarModel& model) {
    return std::ranges::any_of(model.nodes(),
                               [&model](const auto& node) { return node.number != model.localNodeID(); });
}

const MeshNode* find(const NightjarModel& model, std::optional<std::uint32_t> number) {
    const auto& nodes = model.nodes();
    const auto found =
        std::ranges::find_if(nodes, [number](const auto& node) { return node.number == number; });
    return found == nodes.end() ? nullptr : &*found;
}

} // namespace nightjar::MeshRows
