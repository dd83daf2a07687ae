// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "RandomRecords.h"
#include "core/bridge/BridgeJson.h"
#include "core/json/Encoder.h"
#include "core/json/JsonValue.h"
#include "core/mesh/MeshJson.h"

#include <cmath>
#include <gtest/gtest.h>

namespace nightjar {
namespace {

using testing::RandomRecords;

TEST(JsonEncode, escapesTextsSoThatTheyStayOnOneLine) {
    const struct {
        std::string text, written;
    } cases[] = {
        {"/dev/cu.usbserial-0001", R"("\/dev\/cu.usbserial-0001")"},
        {"one\ntwo\r\n\ttab", R"("one\ntwo\r\n\ttab")"},
        {"\"\\\b\f", R"("\"\\\b\f")"},
        {std::string("\0\x01\x1F\x7F", 4), "\"\\u0000\\u0001\\u001f\x7F\""},
        {"Grüße 🌲 \u2028", "\"Grüße 🌲 \u2028\""},
        {"a\xFF\xED\xA0\x80", "\"a\uFFFD\uFFFD\uFFFD\uFFFD\""},
    };
    for (const auto& [text, written] : cases)
        EXPECT_EQ(json::JsonValue(text).text(), written);
}

TEST(JsonEncode, writesTheShortestNumbersThatReadBackTheSame) {
    const struct {
        double value;
        const char* text;
    } cases[] = {{52.521091899999995, "52.521091899999995"},
                 {0.1, "0.1"},
                 {1, "1"},
                 {-0.0, "-0.0"},
                 {1e22, "1e+22"},
                 {5e-324, "5e-324"},
                 {123456789, "123456789"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(json::JsonValue(value).text(), text);
    MeshNode node;
    node.voltage = 3.906f;
    EXPECT_EQ(json::Encoder(json::DateForm::iso8601).encode(node),
              R"({"number":0,"longName":"","shortName":"","hardware":"","voltage":3.906})");
}

TEST(JsonEncode, failsWithASentenceWhereJsonHasNoValue) {
    MeshPosition good;
    std::vector<MeshPosition> bad(4, good);
    bad[0].latitude = std::nan("");
    bad[1].longitude = -std::numeric_limits<double>::infinity();
    bad[2].timestamp = Date{Seconds{1e12}};
    bad[3].timestamp = Date{Seconds{std::nan("")}};
    const json::Encoder encoder(json::DateForm::iso8601);
    EXPECT_TRUE(encoder.encode(good));
    for (const auto& position : bad) {
        EXPECT_EQ(encoder.encode(position).error(), json::unencodable);
        EXPECT_FALSE(encoder.encodeList(std::span<const MeshPosition>(std::array{good, position})));
    }
    MeshtasticBridgeResponse response;
    response.node.emplace().voltage = std::nanf("");
    EXPECT_EQ(encodeLine(response).error(), json::unencodable);
}

TEST(JsonEncode, laysFilesOutWithSortedKeys) {
    MeshPosition position;
    position.id = *Uuid::fromText("8c2f0e6a-0000-4000-8000-0000000000aa");
    position.nodeNumber = 42;
    position.latitude = 52.5;
    position.timestamp = dateFromUnixSeconds(1'746'119'389.9);
    const json::Encoder encoder(json::DateForm::iso8601, json::Layout::pretty, json::KeyOrder::sorted);

    EXPECT_EQ(encoder.encodeList(std::span<const MeshPosition>(&position, 1)), R"([
  {
    "id" : "8C2F0E6A-0000-4000-8000-0000000000AA",
    "latitude" : 52.5,
    "longitude" : 0,
    "nodeNumber" : 42,
    "timestamp" : "2025-05-01T17:09:49Z"
  }
])");
    EXPECT_EQ(encoder.encodeList(std::span<const MeshPosition>()), "[]");
    EXPECT_EQ(json::Encoder(json::DateForm::secondsSince2001).encode(position),
              R"({"id":"8C2F0E6A-0000-4000-8000-0000000000AA","nodeNumber":42,"latitude":52.5,"longitude":0,)"
              R"("timestamp":767812189.9000001})");
}

template <class Record>
void expectRoundTrip(const Record& record, json::DateForm dates) {
    json::Decoder decoder(dates);
    for (const auto layout : {json::Layout::compact, json::Layout::pretty}) {
        const auto text = json::Encoder(dates, layout, json::KeyOrder::sorted).encode(record);
        ASSERT_TRUE(text);
        ASSERT_EQ(decoder.decode<Record>(*text), record) << *text;
        ASSERT_EQ(decoder.decodeFully<Record>(*text), record) << *text;
        if (layout == json::Layout::compact) {
            ASSERT_EQ(text->find('\n'), std::string::npos);
        }
    }
}

TEST(JsonEncode, readsBackEveryRecordItWrites) {
    RandomRecords random;
    SCOPED_TRACE("NIGHTJAR_TEST_SEED=" + std::to_string(random.seed()));
    for (int i = 0; i < 2000; ++i) {
        const auto dates = random.chance(2) ? json::DateForm::iso8601 : json::DateForm::secondsSince2001;
        expectRoundTrip(random.position(), dates);
        expectRoundTrip(random.message(), dates);
        expectRoundTrip(random.node(), dates);
        expectRoundTrip(random.settings(), dates);
        expectRoundTrip(random.request(), dates);
        expectRoundTrip(random.response(), dates);

        auto position = random.position();
        position.timestamp = Date{Seconds{random.number()}};
        expectRoundTrip(position, json::DateForm::secondsSince2001);
        if (HasFatalFailure())
            return;
    }
}

TEST(JsonValue, keepsAnyShape) {
    const std::string text = R"({"a":[1,-9223372036854775808,2.5,true,null,"\/x"],"b":{"c":{}},"d":1e+300})";
    const auto value = json::JsonValue::parse(text);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->text(), text);
    EXPECT_EQ(value->member("d")->number(), 1e300);
    EXPECT_EQ(json::JsonValue::parse("3")->integer<std::uint8_t>(), 3);
    EXPECT_EQ(json::JsonValue::parse("3.0")->integer<int>(), std::nullopt);
    EXPECT_EQ(json::JsonValue::parse("300")->integer<std::uint8_t>(), std::nullopt);
    EXPECT_EQ(json::JsonValue::parse(R"({"k":1,"k":2})")->member("k")->integer<int>(), 1);
    for (const char* broken : {"", "{", "nul", "[1,]", "{} {}", "\"\\ud800\"", "1e999"})
        EXPECT_FALSE(json::JsonValue::parse(broken)) << broken;
}

} // namespace
} // namespace nightjar
