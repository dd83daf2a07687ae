// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/StoredList.h"

#include "RandomRecords.h"
#include "core/json/Encoder.h"
#include "core/mesh/MeshJson.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using testing::RandomRecords;

template <class Record>
std::string inOurLayout(const std::vector<Record>& records) {
    const json::Encoder encoder(json::DateForm::iso8601, json::Layout::pretty, json::KeyOrder::sorted);
    return encoder.encodeList(std::span<const Record>(records)).value();
}

template <class Record>
bool isInOurLayout(std::string_view text) {
    json::LayoutScanner scanner(text, json::schemaOf<Record>());
    while (scanner.next()) {
    }
    return scanner.isComplete();
}

/// The text after adding `record`, by decoding and encoding everything.
template <class Record>
std::string addedPlainly(const std::string& text, const Record& record, std::size_t maximumCount) {
    auto records =
        json::Decoder(json::DateForm::iso8601).decodeList<Record>(text).value_or(std::vector<Record>());
    records.push_back(record);
    if (records.size() > maximumCount)
        records.erase(records.begin(), records.end() - static_cast<std::ptrdiff_t>(maximumCount));
    return inOurLayout(records);
}

template <class Record>
void expectSameBytes(RandomRecords& random, Record (RandomRecords::*make)()) {
    int ours = 0;
    int others = 0;
    for (int i = 0; i < 3000; ++i) {
        random.setOrdinary(random.chance(2));
        std::vector<Record> records;
        for (auto count = random.below(4); count > 0; --count)
            records.push_back((random.*make)());
        auto text = inOurLayout(records);
        ASSERT_TRUE(isInOurLayout<Record>(text)) << text;

        for (auto changes = random.below(3); changes > 0; --changes)
            random.mutate(text);
        ++(isInOurLayout<Record>(text) ? ours : others);
        if (isInOurLayout<Record>(text)) {
            const auto read = json::Decoder(json::DateForm::iso8601).decodeList<Record>(text);
            ASSERT_TRUE(read) << text;
            ASSERT_EQ(inOurLayout(*read), text);
        }

        StoredList<Record> list(text);
        const auto record = (random.*make)();
        const auto maximumCount = 1 + random.below(4);
        if (list.holdsDuplicateOf(record))
            continue;
        ASSERT_TRUE(list.add(record, maximumCount));
        ASSERT_EQ(list.text(), addedPlainly(text, record, maximumCount)) << text;
    }
    EXPECT_GT(ours, 500);
    EXPECT_GT(others, 500);
}

TEST(StoredList, keepingBytesEqualsWritingEverythingAgain) {
    RandomRecords random;
    SCOPED_TRACE("NIGHTJAR_TEST_SEED=" + std::to_string(random.seed()));
    expectSameBytes(random, &RandomRecords::position);
    expectSameBytes(random, &RandomRecords::message);
}

TEST(StoredList, tellsOurLayoutFromOthersOfTheSameContent) {
    const auto position = [](const std::string& latitude, const std::string& rest = "") {
        return "[\n  {\n    \"id\" : \"8C2F0E6A-0000-4000-8000-0000000000AA\",\n    \"latitude\" : " +
               latitude +
               ",\n    \"longitude\" : 5,\n    \"nodeNumber\" : 7,\n    \"timestamp\" : "
               "\"2025-05-01T12:00:00Z\"" +
               rest + "\n  }\n]";
    };
    const std::string plain = position("52.5");
    for (const char* latitude : {"0", "-1", "52.5", "-0.5", "0.001", "1e-04", "100000", "52.521091899999995",
                                 "1234567.12345678", "5e-324", "1.7976931348623157e+308"}) {
        const auto expected = std::string(latitude) == "100000" ? false : true; // written as 1e+05
        EXPECT_EQ(isInOurLayout<MeshPosition>(position(latitude)), expected) << latitude;
    }
    for (const char* latitude : {"52.50", "52.0", "-0", "+1", "01.5", "1E5", "1e400", "52.5210918999999951",
                                 "", "-", ".5", "1.", "\"1\"", "null"}) {
        EXPECT_FALSE(isInOurLayout<MeshPosition>(position(latitude))) << latitude;
    }
    const std::string others[] = {"",
                                  "[",
                                  "[\n]",
                                  "[]\n",
                                  plain + "\n",
                                  " " + plain,
                                  position("52.5", ",\n    \"other\" : 1"),
                                  position("52.5", ","),
                                  position("52.5", ",\n    \"timestamp\" : \"2025-05-01T12:00:00Z\"")};
    for (const auto& text : others)
        EXPECT_FALSE(isInOurLayout<MeshPosition>(text)) << text;

    const auto replaced = [&](std::string_view from, std::string_view to) {
        auto text = plain;
        return text.replace(text.find(from), from.size(), to);
    };
    EXPECT_FALSE(isInOurLayout<MeshPosition>(replaced("AA\"", "aa\"")));
    EXPECT_FALSE(isInOurLayout<MeshPosition>(replaced("\n    ", "\n     ")));
    EXPECT_FALSE(isInOurLayout<MeshPosition>(replaced("\n", "\r\n")));
    EXPECT_FALSE(isInOurLayout<MeshPosition>(replaced(": 7", ": 4294967296")));
    EXPECT_FALSE(isInOurLayout<MeshPosition>(replaced(": 7", ": 07")));
    EXPECT_FALSE(isInOurLayout<MeshPosition>(replaced("00Z", "00+00:00")));
    EXPECT_FALSE(isInOurLayout<MeshPosition>(replaced("05-01", "02-30")));
    EXPECT_TRUE(isInOurLayout<MeshPosition>("[]"));
}

} // namespace
} // namespace nightjar
