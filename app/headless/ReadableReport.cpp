// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/ReadableReport.h"

#include "app/headless/ReadableText.h"

#include <QMetaObject>

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

namespace nightjar::headless {
namespace {

/// The settings state of a model that has not yet loaded what was stored.
constexpr std::string_view startingState = "Waiting for radio…";

std::string textOf(const std::string& text) {
    return text;
}
std::string textOf(const std::optional<std::string>& text) {
    return text.value_or(std::string());
}

} // namespace

ReadableReport::ReadableReport(NightjarModel& model, LineSink& output, Scheduler& scheduler)
    : m_model(model), m_output(output), m_scheduler(scheduler) {}

template <class Getter, class Signal>
void ReadableReport::watchState(std::string_view label, Getter getter, Signal signal) {
    m_states.push_back({std::string(label), [this, getter] { return textOf(std::invoke(getter, m_model)); }});
    connect(&m_model, signal, this, &ReadableReport::scheduleFlush);
}

void ReadableReport::start() {
    watchState("connection", &NightjarModel::connectionState, &NightjarModel::connectionStateChanged);
    watchState("radio", &NightjarModel::radioSettingsState, &NightjarModel::radioSettingsStateChanged);
    watchState("guard", &NightjarModel::parkingStatus, &NightjarModel::parkingStatusChanged);
    watchState("ERROR", &NightjarModel::errorMessage, &NightjarModel::errorMessageChanged);
    connect(&m_model, &NightjarModel::nodesChanged, this, [this] {
        m_nodesChanged = true;
        scheduleFlush();
    });
    connect(&m_model, &NightjarModel::messagesChanged, this, [this] {
        skipStoredMessages();
        scheduleFlush();
    });
    m_nodesChanged = true;
    skipStoredMessages();
    flush();
}

void ReadableReport::scheduleFlush() {
    if (m_scheduled)
        return;
    m_scheduled = true;
    QMetaObject::invokeMethod(this, &ReadableReport::flush, Qt::QueuedConnection);
}

/// The messages of earlier days come while the model is still starting; they are no news.
void ReadableReport::skipStoredMessages() {
    if (m_model.radioSettingsState() == startingState)
        m_seenMessages = m_model.messages().size();
}

void ReadableReport::flush() {
    m_scheduled = false;
    if (m_leftOut > 0 && mayPrint()) {
        print("(" + std::to_string(std::exchange(m_leftOut, 0)) + " more lines were left out)");
    }
    printStates();
    printNodes();
    printMessages();
}

void ReadableReport::printStates() {
    for (State& state : m_states) {
        const auto text = state.text();
        if (text == state.printed)
            continue;
        if (text.empty()) {
            state.printed.clear();
            continue;
        }
        if (!mayPrint())
            continue;
        print(state.label + ": " + terminalSafe(text));
        state.printed = text;
    }
    // Printing an error is what a click on OK is in the window: the same sentence is told again next time.
    State& error = m_states.back();
    if (error.printed.empty() || error.printed != m_model.errorMessage())
        return;
    error.printed.clear();
    m_model.setErrorMessage({});
}

void ReadableReport::printNodes() {
    if (!std::exchange(m_nodesChanged, false))
        return;
    const auto now = m_scheduler.now();
    for (const MeshNode& node : m_model.nodes()) {
        if (!m_seenNodes.insert(node.number).second)
            continue;
        const bool isBase = node.number == m_model.localNodeID();
        printOrCount(nodeSentence(node, terminalSafe(m_model.displayName(node.number), 100), now) +
                     (isBase ? ", the base station" : ""));
    }
}

void ReadableReport::printMessages() {
    const auto& messages = m_model.messages();
    m_seenMessages = std::min(m_seenMessages, messages.size());
    // What somebody wrote is told however much else there is.
    while (m_seenMessages < messages.size())
        print(messageLine(messages[m_seenMessages++]));
}

std::string ReadableReport::messageLine(const MeshMessage& message) const {
    const auto nameOf = [&](std::uint32_t number) { return terminalSafe(m_model.displayName(number), 100); };
    return nameOf(message.sender) + " → " + nameOf(message.recipient) + ": " + terminalSafe(message.text);
}

void ReadableReport::tell(const Notification& notification) {
    // A received message is printed as a message.
    if (notification.identifier.starts_with("message-"))
        return;
    print("ALERT " + terminalSafe(notification.title) + ": " + terminalSafe(notification.body));
}

bool ReadableReport::mayPrint() {
    if (m_output.isFull() || m_printedThisSecond >= linesPerSecond)
        return false;
    ++m_printedThisSecond;
    if (!m_second)
        m_second = m_scheduler.after(std::chrono::seconds(1), [this] { beginNextSecond(); });
    return true;
}

void ReadableReport::printOrCount(const std::string& line) {
    if (mayPrint())
        print(line);
    else
        ++m_leftOut;
}

void ReadableReport::print(std::string_view line) {
    std::string text = localTime(m_scheduler.now());
    text.append("  ").append(line);
    m_output.send(text);
}

void ReadableReport::beginNextSecond() {
    m_second.cancel();
    m_printedThisSecond = 0;
    flush();
}

} // namespace nightjar::headless
