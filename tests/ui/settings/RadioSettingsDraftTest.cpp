// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/RadioSettingsDraft.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

MeshtasticRadioSettings recommended() {
    MeshtasticRadioSettings settings;
    applyRecommendedSetup(settings);
    return settings;
}

TEST(RadioSettingsDraft, tellsEachSettingThatWouldChange) {
    struct Case {
        void (*edit)(MeshtasticRadioSettings&);
        const char* summary;
    };
    const Case cases[] = {
        {[](auto&) {}, "No settings will change."},
        {[](auto& draft) { draft.hopLimit = 5; }, "Hops: 3 → 5"},
        {[](auto& draft) { draft.region = MeshtasticRegion::unset; }, "Region: EU868 → unset"},
        {[](auto& draft) { draft.modemPreset = MeshtasticModemPreset::shortSlow; },
         "Preset: Long Range – Fast → Short Range – Slow"},
        {[](auto& draft) { draft.rxBoostedGain = draft.txEnabled = false; },
         "Transmit: disabled\nRX boosted gain: off"},
        {[](auto& draft) {
             draft.txPower = -3;
             draft.channelNum = 4'294'967'295U;
         },
         "Frequency slot: 0 → 4294967295\nPower: 0 → -3 dBm (0 is regional default)"},
        // Settings without a control have no line.
        {[](auto& draft) {
             draft.usePreset = false;
             draft.overrideDutyCycle = true;
             draft.overrideFrequency = 869.5F;
         },
         "No settings will change."},
    };
    for (const auto& [edit, summary] : cases) {
        RadioSettingsDraft draft{recommended()};
        edit(*draft.values);
        EXPECT_EQ(draft.changeSummary(recommended()).toStdString(), summary);
        EXPECT_EQ(draft.hasChanges(recommended()), *draft.values != recommended());
    }
}

TEST(RadioSettingsDraft, isThereOnceARadioToldItsSettings) {
    RadioSettingsDraft draft;
    draft.applyRecommended();
    EXPECT_FALSE(draft.values);
    EXPECT_FALSE(draft.hasChanges(recommended()));
    EXPECT_EQ(draft.changeSummary(recommended()).toStdString(),
              "The connected radio configuration will be updated.");

    auto told = recommended();
    told.hopLimit = 7;
    draft.follow(told);
    EXPECT_FALSE(draft.hasChanges(told));
    draft.applyRecommended();
    EXPECT_TRUE(draft.hasChanges(told));
    draft.follow({});
    EXPECT_EQ(draft.values, recommended()) << "the radio has gone, the edits have not";
    draft.follow(told);
    EXPECT_EQ(draft.values, told);
}

} // namespace
} // namespace nightjar
