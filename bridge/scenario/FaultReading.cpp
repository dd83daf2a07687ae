// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/scenario/ScenarioParts.h"

#include <array>

namespace nightjar::bridge {
namespace {

/// What may trigger a fault: a moment, a command, or both kinds.
enum class Allowed { atTime, onCommand, both };

struct FaultRule {
    std::string_view name;
    Allowed allowed;
    void (*read)(ObjectReader&, Fault&);
};

void readNothing(ObjectReader&, Fault&) {}

void readText(ObjectReader& reader, Fault& fault) {
    fault.text = reader.text("text");
}

void readSeconds(ObjectReader& reader, Fault& fault) {
    fault.seconds = reader.require("seconds").number("seconds", {0, 3600}).value_or(0);
}

void readExit(ObjectReader& reader, Fault& fault) {
    fault.code = reader.integer<int>("code", 0, 255).value_or(0);
    fault.afterAnswer = reader.flag("afterAnswer").value_or(false);
}

void readVersion(ObjectReader& reader, Fault& fault) {
    fault.version = reader.integer<std::int32_t>("version").value_or(2);
}

void readFlood(ObjectReader& reader, Fault& fault) {
    fault.lines = reader.require("lines").integer<std::uint32_t>("lines", 1, 1'000'000'000).value_or(1);
    fault.nodes = reader.integer<std::uint32_t>("nodes", 1, 10'000).value_or(250);
    fault.newPositions = reader.flag("newPositions").value_or(false);
    fault.text = reader.text("text");
}

void readBytes(ObjectReader& reader, Fault& fault) {
    fault.bytes = reader.require("bytes").integer<std::uint32_t>("bytes", 1, 16U << 20).value_or(1);
}

/// In the order of `FaultKind`.
constexpr std::array rules{
    FaultRule{"error", Allowed::both, readText},
    FaultRule{"silence", Allowed::both, readNothing},
    FaultRule{"late", Allowed::onCommand, readSeconds},
    FaultRule{"twice", Allowed::onCommand, readNothing},
    FaultRule{"incomplete", Allowed::onCommand, readNothing},
    FaultRule{"version", Allowed::both, readVersion},
    FaultRule{"half", Allowed::both, readSeconds},
    FaultRule{"garbage", Allowed::both, readNothing},
    FaultRule{"exit", Allowed::both, readExit},
    FaultRule{"closeOutput", Allowed::both, readNothing},
    FaultRule{"disconnected", Allowed::both, readText},
    FaultRule{"status", Allowed::both, readText},
    FaultRule{"restart", Allowed::both, readNothing},
    FaultRule{"flood", Allowed::both, readFlood},
    FaultRule{"standardError", Allowed::both, readBytes},
    FaultRule{"stubborn", Allowed::both, readSeconds},
};

constexpr auto names = [] {
    std::array<std::string_view, rules.size()> result;
    for (std::size_t i = 0; i < rules.size(); ++i)
        result[i] = rules[i].name;
    return result;
}();

void readTrigger(ObjectReader& reader, Fault& fault, Allowed allowed) {
    const bool timed = reader.has("at");
    const bool commanded = reader.has("command");
    if (timed == commanded)
        return reader.complain("do", "needs either at or command");
    if (timed && allowed == Allowed::onCommand)
        return reader.complain("do", "needs a command, not a time");
    if (timed) {
        fault.trigger = reader.number("at", {0, longestSeconds}).value_or(0);
        return;
    }
    const auto command = reader.choice("command", meshtasticBridgeCommandNames);
    fault.trigger = CommandTrigger{static_cast<MeshtasticBridgeCommand>(command.value_or(0)),
                                   reader.integer<std::uint32_t>("count", 1)};
}

} // namespace

Fault readFault(ObjectReader& reader) {
    Fault fault;
    const auto kind = reader.require("do").choice("do", names);
    if (!kind)
        return fault;
    fault.kind = static_cast<FaultKind>(*kind);
    readTrigger(reader, fault, rules[*kind].allowed);
    rules[*kind].read(reader, fault);
    return fault;
}

} // namespace nightjar::bridge
