// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MessageTransport.h"

#include <optional>
#include <utility>
#include <vector>

namespace nightjar {

/// A transport that only remembers what it was given, or refuses it. One thread.
class FakeMessageTransport final : public MessageTransport {
public:
    [[nodiscard]] std::expected<void, MessageTransportError> send(const OutgoingText& text) override {
        if (m_refusal)
            return std::unexpected(*m_refusal);
        m_sent.push_back(text);
        return {};
    }

    /// From now on, until told otherwise, refuses every message in this way.
    void refuse(std::optional<MessageTransportError> refusal) { m_refusal = std::move(refusal); }
    [[nodiscard]] const std::vector<OutgoingText>& sent() const { return m_sent; }

private:
    std::optional<MessageTransportError> m_refusal;
    std::vector<OutgoingText> m_sent;
};

} // namespace nightjar
