// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "RandomRecords.h"
#include "core/bridge/BridgeJson.h"
#include "core/json/Encoder.h"
#include "core/mesh/MeshJson.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using testing::RandomRecords;

/// What the quick reader takes, the full one must take too, and read to the same values.
template <class Record>
struct Agreement {
    int taken = 0;
    int refused = 0;
    json::Decoder decoder{json::DateForm::iso8601};
    json::Encoder encoder{json::DateForm::iso8601};

    void check(const std::string& text) {
        std::vector<Record> quick;
        const auto append = [](void* list) -> void* {
            return &static_cast<std::vector<Record>*>(list)->emplace_back();
        };
        const json::QuickReader reader(text, json::DateForm::iso8601);
        if (!reader.readRecords(json::schemaOf<Record>(), append, &quick)) {
            ++refused;
            return;
        }
        ++taken;
        const auto full = decoder.decodeListFully<Record>(text);
        ASSERT_EQ(full, quick) << text;
        // Tells -0.0 from 0.0 too.
        ASSERT_EQ(encoder.encodeList(std::span<const Record>(*full)),
                  encoder.encodeList(std::span<const Record>(quick)));
    }
};

template <class Record>
void expectAgreement(RandomRecords& random, Record (RandomRecords::*make)()) {
    Agreement<Record> agreement;
    for (int i = 0; i < 4000; ++i) {
        random.setOrdinary(!random.chance(4));
        const auto layout = random.chance(2) ? json::Layout::pretty : json::Layout::compact;
        const std::vector<Record> records(1 + random.below(2), (random.*make)());
        auto text = json::Encoder(json::DateForm::iso8601, layout)
                        .encodeList(std::span<const Record>(records))
                        .value();
        agreement.check(text);
        for (auto changes = 1 + random.below(3); changes > 0; --changes) {
            random.mutate(text);
            agreement.check(text);
        }
        if (::testing::Test::HasFatalFailure())
            return;
    }
    EXPECT_GT(agreement.taken, 2000);
    EXPECT_GT(agreement.refused, 2000);
}

TEST(JsonAgreement, quickReadingNeverDiffersFromFullReading) {
    RandomRecords random;
    SCOPED_TRACE("NIGHTJAR_TEST_SEED=" + std::to_string(random.seed()));
    expectAgreement(random, &RandomRecords::position);
    expectAgreement(random, &RandomRecords::message);
    expectAgreement(random, &RandomRecords::node);
    expectAgreement(random, &RandomRecords::settings);
    expectAgreement(random, &RandomRecords::response);
}

} // namespace
} // namespace nightjar
