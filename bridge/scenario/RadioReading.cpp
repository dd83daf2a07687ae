// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/scenario/ScenarioParts.h"

#include "core/bridge/BridgeJson.h"

#include <algorithm>

namespace nightjar::bridge {
namespace {

constexpr NumberRange waitRange{0, 3600};

std::vector<ChannelPlan> readChannels(ObjectReader& reader) {
    std::vector<ChannelPlan> channels;
    const bool given = reader.eachObject("channels", [&](ObjectReader& channel) {
        const auto index = channel.require("index").integer<std::uint32_t>("index", 0, 7).value_or(0);
        if (std::ranges::count(channels, index, &ChannelPlan::index) != 0)
            channel.complain("index", "is used twice");
        channels.push_back({index, channel.text("name")});
    });
    if (!given)
        channels.push_back({0, std::nullopt});
    return channels;
}

MeshtasticRadioSettings readSettings(ObjectReader& reader) {
    MeshtasticRadioSettings settings;
    applyRecommendedSetup(settings);
    const auto* value = reader.value("settings");
    if (!value)
        return settings;
    const auto read = makeBridgeDecoder().decode<MeshtasticRadioSettings>(value->text());
    if (!read)
        reader.complain("settings", "must be a complete settings object as the protocol carries it");
    return read.value_or(settings);
}

RestartPlan readRestart(ObjectReader& reader) {
    RestartPlan plan;
    auto restart = reader.object("restart");
    if (!restart)
        return plan;
    plan.onApply = restart->flag("onApply").value_or(plan.onApply);
    plan.afterSeconds = restart->number("after", waitRange).value_or(plan.afterSeconds);
    plan.lastsSeconds = restart->number("lasts", waitRange).value_or(plan.lastsSeconds);
    restart->finish();
    return plan;
}

} // namespace

RadioPlan readRadio(ObjectReader& reader) {
    RadioPlan radio;
    reader.require("node");
    if (auto node = reader.object("node")) {
        radio.node = readNode(*node);
        node->finish();
    }
    radio.channels = readChannels(reader);
    radio.settings = readSettings(reader);
    radio.maximumTxPower = reader.integer<std::int32_t>("maximumTxPower", 0, 30);
    radio.handshakeSeconds = reader.number("handshake", waitRange).value_or(0);
    radio.answerSeconds = reader.number("answer", waitRange).value_or(0);
    radio.restart = readRestart(reader);
    return radio;
}

} // namespace nightjar::bridge
