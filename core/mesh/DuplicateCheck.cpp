// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/DuplicateCheck.h"

#include "core/json/Decoder.h"
#include "core/mesh/MeshJson.h"

#include <algorithm>

namespace nightjar {
namespace {

std::size_t messageField(std::string_view name) {
    const auto fields = json::schemaOf<MeshMessage>().fields;
    return static_cast<std::size_t>(std::ranges::find(fields, name, &json::Field::name) - fields.begin());
}

} // namespace

DuplicateCheck<MeshMessage>::DuplicateCheck()
    : m_packetIDField(messageField("packetID")), m_senderField(messageField("sender")) {}

void DuplicateCheck<MeshMessage>::passStored(const json::LayoutScanner& scanner) {
    m_keys.push_back({static_cast<std::uint32_t>(scanner.integer(m_packetIDField)),
                      static_cast<std::uint32_t>(scanner.integer(m_senderField))});
}

bool DuplicateCheck<MeshMessage>::isAmong(const MeshMessage& message, std::size_t first,
                                          std::size_t last) const {
    if (message.packetID == 0)
        return false;
    return std::any_of(m_keys.begin() + static_cast<std::ptrdiff_t>(first),
                       m_keys.begin() + static_cast<std::ptrdiff_t>(last), [&](const Key& known) {
                           return known.packetID == message.packetID && known.sender == message.sender;
                       });
}

void DuplicateCheck<MeshPosition>::endStored(std::string_view lastRecord) {
    m_lastStored = json::Decoder(json::DateForm::iso8601).decode<MeshPosition>(lastRecord);
    m_last = m_lastStored;
}

bool DuplicateCheck<MeshPosition>::isSamePlace(const std::optional<MeshPosition>& last,
                                               const MeshPosition& position) {
    return last && last->nodeNumber == position.nodeNumber && last->latitude == position.latitude &&
           last->longitude == position.longitude;
}

} // namespace nightjar
