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

template <class Record>
std::optional<std::vector<Record>> recordsOf(const std::string& text) {
    return json::Decoder(json::DateForm::iso8601).decodeList<Record>(text);
}

template <class Record>
void expectSameRecords(RandomRecords& random, Record (RandomRecords::*make)()) {
    int ours = 0;
    int others = 0;
    for (int i = 0; i < 3000; ++i) {
        random.setOrdinary(random.chance(2));
        std::vector<Record> records;
        for (auto count = random.below(4); count > 0; --count)
            records.push_back((random.*make)());
        auto text = inOurLayout(records);
        ASSERT_TRUE(isInOurLayout<Record>(text)) << text;

        const auto changes = random.below(3);
        for (auto left = changes; left > 0; --left)
            random.mutate(text);
        const bool isOurs = isInOurLayout<Record>(text);
        ++(isOurs ? ours : others);
        const auto read = recordsOf<Record>(text);
        ASSERT_TRUE(read || !isOurs) << text;
        auto expected = read.value_or(std::vector<Record>());

        StoredList<Record> list(text);
        const auto record = (random.*make)();
        const auto maximumCount = 1 + random.below(4);
        if (list.holdsDuplicateOf(record))
            continue;
        expected.push_back(record);
        if (expected.size() > maximumCount)
            expected.erase(expected.begin(), expected.end() - static_cast<std::ptrdiff_t>(maximumCount));
        ASSERT_TRUE(list.add(record, maximumCount));
        const auto result = list.takeText();
        ASSERT_TRUE(isInOurLayout<Record>(result)) << result;
        ASSERT_EQ(recordsOf<Record>(result), expected) << text;
        if (changes == 0 || !isOurs) {
            ASSERT_EQ(result, inOurLayout(expected));
        }
    }
    EXPECT_GT(ours, 500);
    EXPECT_GT(others, 500);
}

TEST(StoredList, keepingBytesSaysTheSameAsWritingEverythingAgain) {
    RandomRecords random;
    SCOPED_TRACE("NIGHTJAR_TEST_SEED=" + std::to_string(random.seed()));
    expectSameRecords(random, &RandomRecords::position);
    expectSameRecords(random, &RandomRecords::message);
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
    for (const char* latitude :
         {"0", "-1", "52.5", "52.50", "-0", "12345678901234567", "-0.5", "0.001", "1e-04", "100000",
          "52.521091899999995", "1234567.12345678", "5e-324", "1.7976931348623157e+308"}) {
        EXPECT_TRUE(isInOurLayout<MeshPosition>(position(latitude))) << latitude;
    }
    for (const char* latitude : {"+1", "01.5", "1E5", "1e400", "1e5", "123456789012345678",
                                 "52.5210918999999951", "", "-", ".5", "1.", "\"1\"", "null"}) {
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
