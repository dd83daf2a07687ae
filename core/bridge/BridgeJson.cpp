// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bridge/BridgeJson.h"

#include "core/json/Encoder.h"
#include "core/mesh/MeshJson.h"

#include <array>

namespace nightjar {
namespace json {

template <>
const Schema& schemaOf<MeshtasticRadioSettings>() {
    using Settings = MeshtasticRadioSettings;
    static constexpr std::array fields{
        field<&Settings::usePreset>("usePreset"),
        enumeration<&Settings::region>("region", meshtasticRegionNames),
        enumeration<&Settings::modemPreset>("modemPreset", meshtasticModemPresetNames),
        field<&Settings::hopLimit>("hopLimit"),
        field<&Settings::channelNum>("channelNum"),
        field<&Settings::txEnabled>("txEnabled"),
        field<&Settings::txPower>("txPower"),
        field<&Settings::rxBoostedGain>("rxBoostedGain"),
        field<&Settings::overrideDutyCycle>("overrideDutyCycle"),
        field<&Settings::overrideFrequency>("overrideFrequency"),
    };
    static constexpr Schema schema{fields};
    return schema;
}

template <>
const Schema& schemaOf<MeshtasticBridgeRequest>() {
    using Request = MeshtasticBridgeRequest;
    static const std::array fields{
        field<&Request::protocolVersion>("protocolVersion"),
        field<&Request::requestID>("requestID"),
        enumeration<&Request::command>("command", meshtasticBridgeCommandNames),
        field<&Request::port>("port"),
        field<&Request::text>("text"),
        field<&Request::recipient>("recipient"),
        field<&Request::channel>("channel"),
        record<&Request::settings>("settings"),
    };
    static const Schema schema{fields};
    return schema;
}

template <>
const Schema& schemaOf<MeshtasticBridgeResponse>() {
    using Response = MeshtasticBridgeResponse;
    static const std::array fields{
        field<&Response::protocolVersion>("protocolVersion"),
        field<&Response::requestID>("requestID"),
        enumeration<&Response::event>("event", meshtasticBridgeEventNames),
        field<&Response::error>("error"),
        field<&Response::status>("status"),
        field<&Response::port>("port"),
        field<&Response::localNodeID>("localNodeID"),
        record<&Response::node>("node"),
        field<&Response::channel>("channel"),
        field<&Response::channelName>("channelName"),
        record<&Response::message>("message"),
        record<&Response::settings>("settings"),
        field<&Response::packetID>("packetID"),
    };
    static const Schema schema{fields};
    return schema;
}

} // namespace json

namespace {

template <class Record>
std::expected<std::string, std::string> encodeRecordLine(const Record& record) {
    auto text = json::Encoder(json::DateForm::iso8601).encode(record);
    if (text)
        *text += '\n';
    return text;
}

} // namespace

std::expected<std::string, std::string> encodeLine(const MeshtasticBridgeRequest& request) {
    return encodeRecordLine(request);
}

std::expected<std::string, std::string> encodeLine(const MeshtasticBridgeResponse& response) {
    return encodeRecordLine(response);
}

json::Decoder makeBridgeDecoder() {
    return json::Decoder(json::DateForm::iso8601);
}

} // namespace nightjar
