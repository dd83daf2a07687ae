// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/RadioSettingsDraft.h"

#include <QStringList>

namespace nightjar {

namespace {

QString shortTitle(MeshtasticRegion region) {
    return region == MeshtasticRegion::eu868 ? QStringLiteral("EU868") : QStringLiteral("unset");
}

QString titleOf(MeshtasticModemPreset preset) {
    const auto text = title(preset);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString step(const QString& before, const QString& after) {
    return before + QStringLiteral(" → ") + after;
}

template <class Number>
QString step(Number before, Number after) {
    return step(QString::number(before), QString::number(after));
}

QString summary(const MeshtasticRadioSettings& current, const MeshtasticRadioSettings& draft) {
    QStringList lines;
    const auto add = [&lines](bool differs, const char* label, const QString& change) {
        if (differs)
            lines << QString::fromUtf8(label) + change;
    };
    const auto choice = [](bool isOn, const char* on, const char* off) {
        return QString::fromUtf8(isOn ? on : off);
    };
    add(current.region != draft.region,
        "Region: ", step(shortTitle(current.region), shortTitle(draft.region)));
    add(current.modemPreset != draft.modemPreset,
        "Preset: ", step(titleOf(current.modemPreset), titleOf(draft.modemPreset)));
    add(current.hopLimit != draft.hopLimit, "Hops: ", step(current.hopLimit, draft.hopLimit));
    add(current.channelNum != draft.channelNum,
        "Frequency slot: ", step(current.channelNum, draft.channelNum));
    add(current.txEnabled != draft.txEnabled, "Transmit: ", choice(draft.txEnabled, "enabled", "disabled"));
    add(current.txPower != draft.txPower,
        "Power: ", step(current.txPower, draft.txPower) + QStringLiteral(" dBm (0 is regional default)"));
    add(current.rxBoostedGain != draft.rxBoostedGain,
        "RX boosted gain: ", choice(draft.rxBoostedGain, "on", "off"));
    return lines.isEmpty() ? QStringLiteral("No settings will change.") : lines.join(u'\n');
}

} // namespace

void RadioSettingsDraft::follow(const std::optional<MeshtasticRadioSettings>& current) {
    if (current)
        values = current;
}

void RadioSettingsDraft::applyRecommended() {
    if (values)
        applyRecommendedSetup(*values);
}

bool RadioSettingsDraft::hasChanges(const std::optional<MeshtasticRadioSettings>& current) const {
    return values && values != current;
}

QString RadioSettingsDraft::changeSummary(const std::optional<MeshtasticRadioSettings>& current) const {
    if (!current || !values)
        return QStringLiteral("The connected radio configuration will be updated.");
    return summary(*current, *values);
}

} // namespace nightjar
