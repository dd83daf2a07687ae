// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/MeshRadioError.h"

namespace nightjar {

MeshRadioError MeshRadioError::incompatibleVersion() {
    return bridge("Halvard Meshtastic Bridge uses an incompatible protocol version.");
}

MeshRadioError MeshRadioError::couldNot(std::string_view what, const std::error_code& error) {
    return {Kind::system,
            "Halvard Meshtastic Bridge couldn’t be " + std::string(what) + ": " + error.message() + "."};
}

std::string MeshRadioError::description() const {
    switch (kind) {
    case Kind::noRadio:
        return "No Meshtastic USB radio was found.";
    case Kind::bridgeMissing:
        return "Halvard Meshtastic Bridge is not installed. Install the separate GPL bridge to use "
               "Meshtastic "
               "features.";
    case Kind::bridgeStopped:
        return "Halvard Meshtastic Bridge stopped unexpectedly.";
    case Kind::invalidBridgeReply:
        return "Halvard Meshtastic Bridge returned an unreadable response.";
    case Kind::requestTimedOut:
        return "Halvard Meshtastic Bridge did not answer in time.";
    case Kind::cancelled:
        return "The operation was cancelled.";
    case Kind::bridge:
    case Kind::system:
        break;
    }
    return text;
}

} // namespace nightjar
