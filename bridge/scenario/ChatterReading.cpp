// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/scenario/ScenarioParts.h"

namespace nightjar::bridge {
namespace {

std::string readText(ObjectReader& reader) {
    const auto text = reader.require("text").text("text").value_or("");
    if (text.empty() || text.size() > 230)
        reader.complain("text", "must have 1 to 230 bytes, as one packet holds");
    return text;
}

ScriptedText readScripted(ObjectReader& reader) {
    ScriptedText text;
    text.worldSeconds = reader.require("at").number("at", {0, longestSeconds}).value_or(0);
    text.from = reader.require("from").integer<std::uint32_t>("from").value_or(0);
    text.channel = reader.integer<std::uint32_t>("channel", 0, 7).value_or(0);
    text.direct = reader.flag("direct").value_or(false);
    text.text = readText(reader);
    return text;
}

RandomTexts readRandom(ObjectReader& reader) {
    RandomTexts random;
    constexpr NumberRange intervals{0.1, longestSeconds};
    random.leastWorldSeconds = reader.require("least").number("least", intervals).value_or(60);
    random.mostWorldSeconds = reader.require("most").number("most", intervals).value_or(longestSeconds);
    if (random.mostWorldSeconds < random.leastWorldSeconds)
        reader.complain("most", "must not be less than least");
    random.directShare = reader.number("directShare", {0, 1}).value_or(0);
    reader.each("channels", [&](const json::JsonValue& value, const std::string& path) {
        const auto channel = value.integer<std::uint32_t>();
        if (!channel || *channel > 7)
            return reader.problem().report(path, "must be a whole number from 0 to 7");
        random.channels.push_back(*channel);
    });
    if (random.channels.empty())
        random.channels.push_back(0);
    reader.require("texts").each("texts", [&](const json::JsonValue& value, const std::string& path) {
        const auto* text = value.get<std::string>();
        if (!text || text->empty() || text->size() > 230) {
            return reader.problem().report(path, "must be text of 1 to 230 bytes");
        }
        random.texts.push_back(*text);
    });
    if (random.texts.empty())
        reader.complain("texts", "must hold at least one text");
    return random;
}

Reply readReply(ObjectReader& reader) {
    Reply reply;
    reply.contains = reader.text("contains").value_or("");
    reply.text = readText(reader);
    reply.afterSeconds = reader.number("after", {0, 3600}).value_or(1);
    reply.from = reader.integer<std::uint32_t>("from");
    return reply;
}

} // namespace

void readChatter(ObjectReader& scenario, Scenario& into) {
    if (auto chatter = scenario.object("chatter")) {
        chatter->eachObject("script", [&](ObjectReader& text) { into.script.push_back(readScripted(text)); });
        if (auto random = chatter->object("random")) {
            into.randomTexts = readRandom(*random);
            random->finish();
        }
        chatter->finish();
    }
    scenario.eachObject("replies", [&](ObjectReader& reply) { into.replies.push_back(readReply(reply)); });
}

} // namespace nightjar::bridge
