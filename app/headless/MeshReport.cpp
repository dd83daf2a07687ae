// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/MeshReport.h"

#include "app/headless/ReadableText.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace nightjar::headless {
namespace {

/// The settings state of a model that has not yet loaded what was stored.
constexpr std::string_view startingState = "Waiting for radio…";

} // namespace

MeshReport::MeshReport(NightjarModel& model, Scheduler& scheduler, std::function<void()> changed)
    : m_model(model), m_scheduler(scheduler), m_changed(std::move(changed)) {
    watchState("connection", &NightjarModel::connectionState, &NightjarModel::connectionStateChanged);
    watchState("radio", &NightjarModel::radioSettingsState, &NightjarModel::radioSettingsStateChanged);
    watchState("guard", &NightjarModel::parkingStatus, &NightjarModel::parkingStatusChanged);
    // Printing an error is what a click on OK is in the window: the same sentence is told again next time.
    m_states.addError([this] { return m_model.errorMessage().value_or(""); },
                      [this] { m_model.setErrorMessage({}); });
    connect(&model, &NightjarModel::errorMessageChanged, this, m_changed);
    connect(&model, &NightjarModel::nodesChanged, this, [this] {
        m_nodesChanged = true;
        m_changed();
    });
    connect(&model, &NightjarModel::messagesChanged, this, [this] {
        skipStoredMessages();
        m_changed();
    });
    skipStoredMessages();
}

template <class Getter, class Signal>
void MeshReport::watchState(std::string label, Getter getter, Signal signal) {
    m_states.add(std::move(label), [this, getter] { return std::string(std::invoke(getter, m_model)); });
    connect(&m_model, signal, this, m_changed);
}

/// The messages of earlier days come while the model is still starting; they are no news.
void MeshReport::skipStoredMessages() {
    if (m_model.radioSettingsState() == startingState)
        m_seenMessages = m_model.messages().size();
}

void MeshReport::print(ReadableLines& lines) {
    m_states.print(lines);
    printNodes(lines);
    printMessages(lines);
}

void MeshReport::printNodes(ReadableLines& lines) {
    if (!std::exchange(m_nodesChanged, false))
        return;
    const auto now = m_scheduler.now();
    for (const MeshNode& node : m_model.nodes()) {
        if (!m_seenNodes.insert(node.number).second)
            continue;
        const bool isBase = node.number == m_model.localNodeID();
        lines.printOrCount(nodeSentence(node, terminalSafe(m_model.displayName(node.number), 100), now) +
                           (isBase ? ", the base station" : ""));
    }
}

void MeshReport::printMessages(ReadableLines& lines) {
    const auto& messages = m_model.messages();
    m_seenMessages = std::min(m_seenMessages, messages.size());
    // What somebody wrote is told however much else there is.
    while (m_seenMessages < messages.size())
        lines.print(messageLine(messages[m_seenMessages++]));
}

std::string MeshReport::messageLine(const MeshMessage& message) const {
    const auto nameOf = [&](std::uint32_t number) { return terminalSafe(m_model.displayName(number), 100); };
    return nameOf(message.sender) + " → " + nameOf(message.recipient) + ": " + terminalSafe(message.text);
}

} // namespace nightjar::headless
