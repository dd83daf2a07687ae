// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bridge/BridgeJson.h"
#include "core/json/JsonValue.h"
#include "core/mesh/MeshJson.h"

#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace nightjar {
namespace {

using namespace std::string_literals;

/// A line of the bridge, the line that is written of what was read from it, or none when it must be refused.
struct Line {
    const char* what;
    std::string text;
    std::optional<std::string> rewritten;
};

const std::optional<std::string> refused;

std::string sent(const std::string& rest) {
    return R"({"protocolVersion":1,"event":"sent",)" + rest + "}";
}

std::string nodeLine(const std::string& rest) {
    return R"({"protocolVersion":1,"event":"node","node":{"number":1,"longName":"a","shortName":"b","hardware":"c",)" +
           rest + "}}";
}

std::string positionLine(const std::string& latitude) {
    return nodeLine(R"("position":{"id":"8C2F0E6A-0000-4000-8000-0000000000AA","nodeNumber":1,"latitude":)" +
                    latitude + R"(,"longitude":0,"timestamp":"2025-05-01T12:34:56Z"})");
}

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

void check(std::span<const Line> lines) {
    auto decoder = makeBridgeDecoder();
    for (const auto& [what, text, rewritten] : lines) {
        SCOPED_TRACE(what);
        const auto response = decoder.decode<MeshtasticBridgeResponse>(text);
        ASSERT_EQ(response.has_value(), rewritten.has_value()) << text.substr(0, 300);
        if (response) {
            EXPECT_EQ(encodeLine(*response), *rewritten + "\n");
        }
        EXPECT_EQ(decoder.decodeFully<MeshtasticBridgeResponse>(text), response);
    }
}

const std::string minimal = R"({"protocolVersion":1,"event":"ready"})";
const std::string plain = sent(R"("packetID":7)");

TEST(JsonDecode, takesOneObjectAndWhiteSpaceAroundIt) {
    const Line lines[] = {
        {"minimal", minimal, minimal},
        {"trailing carriage return", minimal + "\r", minimal},
        {"space everywhere", " {\t\"protocolVersion\" :\n1 , \"event\"\r: \"ready\" } ", minimal},
        {"keys in another order", R"({"event":"ready","protocolVersion":1})", minimal},
        {"escaped key", R"({"protocolVersion":1,"\u0065vent":"ready"})", minimal},
        {"unknown keys", sent(R"("x":{"y":[1,null,"z"]},"packetID":7,"w":true)"), plain},
        {"nothing", "", refused},
        {"white space", " ", refused},
        {"byte order mark", "\xEF\xBB\xBF" + minimal, refused},
        {"garbage behind", minimal + " x", refused},
        {"a second brace", minimal + "}", refused},
        {"two objects", minimal + minimal, refused},
        {"NUL behind", minimal + "\0"s, refused},
        {"NUL before", "\0"s + minimal, refused},
        {"not closed", minimal.substr(0, minimal.size() - 1), refused},
        {"trailing comma", R"({"protocolVersion":1,"event":"ready",})", refused},
        {"leading comma", R"({,"protocolVersion":1,"event":"ready"})", refused},
        {"missing comma", R"({"protocolVersion":1 "event":"ready"})", refused},
        {"missing colon", R"({"protocolVersion" 1,"event":"ready"})", refused},
        {"form feed as space", "{\"protocolVersion\":1,\f\"event\":\"ready\"}", refused},
        {"comment", R"({"protocolVersion":1,/*x*/"event":"ready"})", refused},
        {"single quotes", "{'protocolVersion':1,'event':'ready'}", refused},
        {"array", "[" + minimal + "]", refused},
        {"number", "1", refused},
        {"string", "\"ready\"", refused},
        {"null", "null", refused},
    };
    check(lines);
}

TEST(JsonDecode, refusesWhatIsNotJsonUnderUnknownKeysToo) {
    std::vector<Line> lines;
    for (const char* value :
         {"tru", "01", "1.", ".5", "+1", "0x10", "NaN", "Infinity", "-", "1e", "\"\\q\"", "\"a\tb\"", "[1,]",
          "[1 2]", "{\"a\" 1}", "[{]}", "\"\xFF\"", "\"\\ud800\"", "\"open"}) {
        lines.push_back({value, sent(R"("x":)"s + value), refused});
    }
    check(lines);
}

TEST(JsonDecode, takesIntegersOnlyAsIntegersInTheirRange) {
    const auto packet = [](const char* number) { return sent(R"("packetID":)"s + number); };
    const auto version = [](const char* number) {
        return R"({"protocolVersion":)"s + number + R"(,"event":"ready"})";
    };
    const auto hops = [](const char* number) { return nodeLine(R"("hopsAway":)"s + number); };
    const Line lines[] = {
        {"largest", packet("4294967295"), packet("4294967295")},
        {"minus zero", packet("-0"), packet("0")},
        {"one more", packet("4294967296"), refused},
        {"negative", packet("-1"), refused},
        {"with a fraction", packet("1.0"), refused},
        {"with an exponent", packet("1e2"), refused},
        {"half", packet("1.5"), refused},
        {"leading zero", packet("07"), refused},
        {"text", packet("\"1\""), refused},
        {"boolean", packet("true"), refused},
        {"above 64 bits", packet("18446744073709551617"), refused},
        {"largest version", version("9223372036854775807"), version("9223372036854775807")},
        {"smallest version", version("-9223372036854775808"), version("-9223372036854775808")},
        {"version above", version("9223372036854775808"), refused},
        {"version with a fraction", version("1.0"), refused},
        {"version as text", version("\"1\""), refused},
        {"nested, negative", hops("-1"), refused},
    };
    check(lines);
}

TEST(JsonDecode, takesMissingAndNullAsAbsentForOptionalFieldsOnly) {
    const Line lines[] = {
        {"optional null", sent(R"("packetID":null)"), R"({"protocolVersion":1,"event":"sent"})"},
        {"nested optional null", nodeLine(R"("position":null,"voltage":null,"hopsAway":2)"),
         nodeLine(R"("hopsAway":2)")},
        {"required null", R"({"protocolVersion":null,"event":"ready"})", refused},
        {"required event null", R"({"protocolVersion":1,"event":null})", refused},
        {"required missing", R"({"event":"ready"})", refused},
        {"event missing", R"({"protocolVersion":1})", refused},
        {"node without a number", sent(R"("node":{"longName":"a","shortName":"b","hardware":"c"})"), refused},
        {"node without names", sent(R"("node":{"number":1})"), refused},
        {"node is a list", sent(R"("node":[])"), refused},
        {"node is empty", sent(R"("node":{})"), refused},
        {"text is a number", sent(R"("status":1)"), refused},
    };
    check(lines);
}

TEST(JsonDecode, countsTheFirstOfRepeatedKeys) {
    const Line lines[] = {
        {"two values", sent(R"("packetID":7,"packetID":8)"), plain},
        {"then null", sent(R"("packetID":7,"packetID":null)"), plain},
        {"then a wrong type", sent(R"("packetID":7,"packetID":"x")"), plain},
        {"first null", sent(R"("packetID":null,"packetID":8)"), R"({"protocolVersion":1,"event":"sent"})"},
        {"event", R"({"protocolVersion":1,"event":"sent","packetID":7,"event":"ready"})", plain},
        {"then a broken node", sent(R"("packetID":7,"packetID":[{}])"), plain},
    };
    check(lines);
}

TEST(JsonDecode, knowsExactlyTheNamedCases) {
    const auto settings = [](const char* region, const char* preset) {
        return R"({"protocolVersion":1,"event":"radioSettings","settings":{"usePreset":true,"region":)"s +
               region + R"(,"modemPreset":)" + preset +
               R"(,"hopLimit":3,"channelNum":0,"txEnabled":true,"txPower":-4,"rxBoostedGain":true,)"
               R"("overrideDutyCycle":false,"overrideFrequency":869.525}})";
    };
    const Line lines[] = {
        {"all known", settings("\"eu868\"", "\"shortFast\""), settings("\"eu868\"", "\"shortFast\"")},
        {"escaped letters", settings("\"eu\\u0038\\u00368\"", "\"longFast\""),
         settings("\"eu868\"", "\"longFast\"")},
        {"unknown region", settings("\"us915\"", "\"longFast\""), refused},
        {"region in upper case", settings("\"EU868\"", "\"longFast\""), refused},
        {"unknown preset", settings("\"eu868\"", "\"veryLongSlow\""), refused},
        {"preset as a number", settings("\"eu868\"", "0"), refused},
        {"unknown event", R"({"protocolVersion":1,"event":"rebooted"})", refused},
        {"empty event", R"({"protocolVersion":1,"event":""})", refused},
        {"event with a space", R"({"protocolVersion":1,"event":"ready "})", refused},
        {"a key missing", sent(R"("settings":{"usePreset":true})"), refused},
    };
    check(lines);
}

TEST(JsonDecode, readsTextsAsWellFormedUnicode) {
    const auto status = [](const std::string& text) { return sent(R"("status":")" + text + "\""); };
    const Line lines[] = {
        {"every escape", status(R"(\"\\\/\b\f\n\r\t\u00e9)"), status(R"(\"\\\/\b\f\n\r\té)")},
        {"surrogate pair", status(R"(\ud83c\udf32)"), status("🌲")},
        {"escaped NUL", status(R"(a\u0000b)"), status(R"(a\u0000b)")},
        {"DEL", status("\x7F"), status("\x7F")},
        {"eight bytes and more", status("Grüße aus dem Wald, alles gut"),
         status("Grüße aus dem Wald, alles gut")},
        {"lone high surrogate", status(R"(\ud800x)"), refused},
        {"lone low surrogate", status(R"(\udc00)"), refused},
        {"surrogates in the wrong order", status(R"(\udf32\ud83c)"), refused},
        {"invalid byte", status("a\xFF"), refused},
        {"overlong", status("\xC0\x80"), refused},
        {"encoded surrogate", status("\xED\xA0\x80"), refused},
        {"cut off", status("\xE2\x82"), refused},
        {"above Unicode", status("\xF4\x90\x80\x80"), refused},
        {"raw control character", status("a\x01"), refused},
        {"raw line feed", status("a\nb"), refused},
        {"short escape", status(R"(\u12)"), refused},
        {"invalid byte outside a text", "{\xFF" + minimal.substr(1), refused},
    };
    check(lines);
}

TEST(JsonDecode, readsNumbersToTheNearestDouble) {
    const struct {
        const char* text;
        std::optional<double> value;
    } cases[] = {
        {"52.521091899999995", 52.521091899999995},
        {"0.1234567890123456789012345678901234567890", 0.12345678901234568},
        {"9007199254740993", 9007199254740992.0},
        {"0.3", 0.3},
        {"179.9999999", 179.9999999},
        {"-33.8567844", -33.8567844},
        {"123456789012345678", 123456789012345680.0},
        {"9007199254740993.0000001", 9007199254740994.0},
        {"0.000000000000000000001", 1e-21},
        {"1e2", 100.0},
        {"2.5E-3", 0.0025},
        {"5e-324", 5e-324},
        {"1e-400", 0.0},
        {"18446744073709551615", 18446744073709551616.0},
        {"1e400", {}},
        {"-1e400", {}},
        {"01.5", {}},
        {"1.", {}},
        {".5", {}},
        {"\"1.5\"", {}},
    };
    auto decoder = makeBridgeDecoder();
    for (const auto& [text, value] : cases) {
        const auto response = decoder.decode<MeshtasticBridgeResponse>(positionLine(text));
        ASSERT_EQ(response.has_value(), value.has_value()) << text;
        if (response) {
            EXPECT_EQ(response->node->position->latitude, *value) << text;
        }
    }

    const Line floats[] = {
        {"shortest float", nodeLine(R"("voltage":3.906)"), nodeLine(R"("voltage":3.906)")},
        {"more digits than a float has", nodeLine(R"("voltage":3.9059999999)"),
         nodeLine(R"("voltage":3.906)")},
        {"vanishes", nodeLine(R"("voltage":1e-60)"), nodeLine(R"("voltage":0)")},
        {"above the range of a float", nodeLine(R"("voltage":1e39)"), refused},
    };
    check(floats);
}

TEST(JsonDecode, boundsTheNestingAndSurvivesAnyDepth) {
    const auto inside = [](const std::string& value) { return sent(R"("x":)" + value + R"(,"packetID":7)"); };
    const Line lines[] = {
        {"60", inside(nested(60)), plain},
        {"65", inside(nested(65)), refused},
        {"a million", inside(nested(1'000'000)), refused},
        {"a million, never closed", inside(std::string(1'000'000, '[')), refused},
        {"a million objects", inside([] {
             std::string text;
             for (int i = 0; i < 1'000'000; ++i)
                 text += R"({"a":)";
             return text;
         }()),
         refused},
    };
    check(lines);
    EXPECT_TRUE(json::JsonValue::parse(nested(60)));
    EXPECT_FALSE(json::JsonValue::parse(nested(1'000'000)));
}

std::size_t residentBytes() {
    std::size_t total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

TEST(JsonDecode, givesTheMemoryOfAHugeLineBack) {
    auto decoder = makeBridgeDecoder();
    [[maybe_unused]] const auto before = residentBytes();
    for (const char* ending : {"\"", "\\u0041\"", ""}) {
        std::string line = sent(R"("status":")" + std::string(100'000'000, 'x') + ending);
        const auto response = decoder.decode<MeshtasticBridgeResponse>(line);
        EXPECT_EQ(response.has_value(), *ending != '\0');
    }
    EXPECT_TRUE(decoder.decode<MeshtasticBridgeResponse>(minimal));
#ifndef __SANITIZE_ADDRESS__ // which keeps freed memory for a while
    EXPECT_LT(residentBytes(), before + 20'000'000);
#endif
}

TEST(JsonDecode, readsOnlyTheTextItWasGiven) {
    // Nothing follows the text: a sanitizer sees every byte that is read beyond it.
    auto decoder = makeBridgeDecoder();
    for (const std::string& text : {minimal, plain, positionLine("52.5"), R"({"x":"\u0041"})"s}) {
        for (std::size_t length = 0; length <= text.size(); ++length) {
            const std::vector<char> exact(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
            const auto response = decoder.decode<MeshtasticBridgeResponse>({exact.data(), exact.size()});
            EXPECT_EQ(response.has_value(), length == text.size() && text.size() > 15)
                << text.substr(0, length);
        }
    }
}

TEST(JsonDecode, readsListsWholeOrNotAtAll) {
    const std::string good = R"({"id":"8C2F0E6A-0000-4000-8000-0000000000AA","nodeNumber":1,"latitude":52,)"
                             R"("longitude":13.5,"timestamp":767795696.75})";
    const struct {
        std::string text;
        std::optional<std::size_t> count;
    } cases[] = {
        {"[]", 0},
        {" [ ] ", 0},
        {"[" + good + "]", 1},
        {"[" + good + " ,\n" + good + "]\n", 2},
        {"", {}},
        {"[", {}},
        {"{}", {}},
        {good, {}},
        {"[" + good, {}},
        {"[" + good + ",]", {}},
        {"[," + good + "]", {}},
        {"[" + good + good + "]", {}},
        {"[" + good + "]]", {}},
        {"[" + good + ",{}]", {}},
        {"[" + good + ",null]", {}},
        {"[" + good + ",1]", {}},
        {"[[" + good + "]]", {}},
        {"[" + good + "] x", {}},
    };
    json::Decoder decoder(json::DateForm::secondsSince2001);
    for (const auto& [text, count] : cases) {
        const auto positions = decoder.decodeList<MeshPosition>(text);
        ASSERT_EQ(positions.has_value(), count.has_value()) << text;
        EXPECT_EQ(decoder.decodeListFully<MeshPosition>(text), positions) << text;
        if (positions) {
            EXPECT_EQ(positions->size(), *count) << text;
        }
    }
    EXPECT_EQ(decoder.decode<MeshPosition>(good)->timestamp, Date{Seconds{767795696.75}});
}

} // namespace
} // namespace nightjar
