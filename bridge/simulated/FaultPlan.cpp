// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/FaultPlan.h"

namespace nightjar::bridge {

const Fault* FaultPlan::meet(MeshtasticBridgeCommand command) {
    const auto count = ++m_counts[static_cast<std::size_t>(command)];
    for (const Fault& fault : m_faults) {
        const auto* trigger = std::get_if<CommandTrigger>(&fault.trigger);
        if (trigger && trigger->command == command && trigger->count.value_or(count) == count)
            return &fault;
    }
    return nullptr;
}

std::string_view garbageLines() {
    using namespace std::string_view_literals;
    return "INFO  | 00:00:12 4 [Router] Packet History - no JSON at all\n"
           "{\"protocolVersion\":1,\"event\":\"status\",\"status\":\"no end\n"
           "{\"protocolVersion\":1,\"event\":\"status\",\"status\":\"\xC3\x28 ill-formed\"}\n"
           "{\"protocolVersion\":1,\"event\":\"status\",\"status\":\"\\ud83d alone\"}\n"
           "{\"protocolVersion\":1,\"event\":\"coffee\",\"status\":\"unknown event\"}\n"
           "{\"event\":\"status\",\"status\":\"no version\"}\n"
           "{\"protocolVersion\":1,\"event\":\"localNode\",\"localNodeID\":4294967296}\n"
           "{\"protocolVersion\":1,\"event\":\"node\",\"node\":{\"number\":77,\"longName\":\"half a "
           "node\"}}\n"
           "{\"protocolVersion\":1,\"event\":\"message\",\"message\":\"not a record\"}\n"
           "[1,2,3]\n"
           "\n"
           "\r\n"
           "null\n"
           "\0\0\0\n"sv;
}

} // namespace nightjar::bridge
