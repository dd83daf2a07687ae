// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/ConnectionTexts.h"

namespace nightjar::ConnectionTexts {

using Kind = MeshRadioError::Kind;

std::string connectionStatus(const MeshRadioError& error) {
    switch (error.kind) {
    case Kind::noRadio:
        return "USB radio not connected";
    case Kind::bridgeMissing:
        return "Meshtastic Bridge not installed";
    case Kind::bridgeStopped:
        return "Meshtastic Bridge stopped";
    case Kind::requestTimedOut:
        return "Radio did not answer";
    case Kind::invalidBridgeReply:
    case Kind::bridge:
    case Kind::system:
    case Kind::cancelled:
        break;
    }
    return "USB connection failed";
}

std::string connectionDetail(const MeshRadioError& error) {
    switch (error.kind) {
    case Kind::noRadio:
        return "The selected USB radio is no longer available.";
    case Kind::requestTimedOut:
        return "The selected device did not answer as a Meshtastic radio.";
    case Kind::bridgeMissing:
    case Kind::bridgeStopped:
    case Kind::invalidBridgeReply:
    case Kind::bridge:
    case Kind::system:
    case Kind::cancelled:
        break;
    }
    return error.description();
}

} // namespace nightjar::ConnectionTexts
