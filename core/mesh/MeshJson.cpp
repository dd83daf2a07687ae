// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/MeshJson.h"

#include <array>

namespace nightjar::json {

template <>
const Schema& schemaOf<MeshPosition>() {
    static constexpr std::array fields{
        field<&MeshPosition::id>("id"),
        field<&MeshPosition::nodeNumber>("nodeNumber"),
        field<&MeshPosition::latitude>("latitude"),
        field<&MeshPosition::longitude>("longitude"),
        field<&MeshPosition::altitude>("altitude"),
        field<&MeshPosition::timestamp>("timestamp"),
    };
    static constexpr Schema schema{fields};
    return schema;
}

template <>
const Schema& schemaOf<MeshNode>() {
    static const std::array fields{
        field<&MeshNode::number>("number"),
        field<&MeshNode::longName>("longName"),
        field<&MeshNode::shortName>("shortName"),
        field<&MeshNode::hardware>("hardware"),
        field<&MeshNode::batteryLevel>("batteryLevel"),
        field<&MeshNode::voltage>("voltage"),
        field<&MeshNode::signalToNoise>("signalToNoise"),
        field<&MeshNode::hopsAway>("hopsAway"),
        field<&MeshNode::lastSeen>("lastSeen"),
        record<&MeshNode::position>("position"),
    };
    static const Schema schema{fields};
    return schema;
}

template <>
const Schema& schemaOf<MeshMessage>() {
    static constexpr std::array fields{
        field<&MeshMessage::id>("id"),
        field<&MeshMessage::packetID>("packetID"),
        field<&MeshMessage::sender>("sender"),
        field<&MeshMessage::recipient>("recipient"),
        field<&MeshMessage::channel>("channel"),
        field<&MeshMessage::text>("text"),
        field<&MeshMessage::timestamp>("timestamp"),
        field<&MeshMessage::isOutgoing>("isOutgoing"),
    };
    static constexpr Schema schema{fields};
    return schema;
}

} // namespace nightjar::json
