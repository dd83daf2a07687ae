// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/headless/StandIn.h"

#include "app/headless/TableBuilder.h"
#include "core/mesh/MeshJson.h"

namespace nightjar::headless {

template <>
struct CaseNames<GuardProfile> {
    static constexpr std::span<const std::string_view> names = guardProfileNames;
};

ControllerTable standInTable(StandIn& standIn) {
    using S = StandIn;
    constexpr std::expected<void, std::string> (*guard)(S&, std::uint32_t) = [](S&, std::uint32_t number) {
        using Answer = std::expected<void, std::string>;
        return number == 7 ? Answer() : Answer(std::unexpect, "There is no such node.");
    };
    return TableBuilder("StandIn", standIn)
        .list<ChangingRecords>("nodes", &S::nodes, &S::nodesChanged)
        .list<AppendedRecords>("messages", &S::messages, &S::messagesChanged)
        .published("status", &S::status, &S::statusChanged)
        .settable("radius", &S::radius, &S::setRadius, &S::radiusChanged)
        .settable("recipient", &S::recipient, &S::setRecipient, &S::recipientChanged)
        .settable("profile", &S::profile, &S::setProfile, &S::profileChanged)
        .readable("channels", &S::channels)
        .operation("refresh", &S::refresh)
        .operation("connect", &S::connect)
        .operation("displayName", &S::displayName)
        .operation("guard", guard)
        .build();
}

} // namespace nightjar::headless
