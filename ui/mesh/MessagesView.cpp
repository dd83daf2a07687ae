// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MessagesView.h"

#include "core/base/Text.h"
#include "ui/common/Buttons.h"
#include "ui/common/TextLabel.h"
#include "ui/common/UnavailableView.h"
#include "ui/common/WheelGuard.h"
#include "ui/mesh/MeshRows.h"
#include "ui/mesh/MessageList.h"
#include "ui/text/ShownText.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace nightjar {

namespace {

constexpr int narrowestPicker = 84;
constexpr int widestPicker = 190;

/// Shows the choices and the current one. A list that is open stays as it is.
template <class Value>
void showChoices(QComboBox& picker, std::vector<std::pair<QString, Value>>& shown,
                 std::vector<std::pair<QString, Value>> choices, const Value& current) {
    const QSignalBlocker silence(picker);
    if (choices != shown && !picker.view()->isVisible()) {
        shown = std::move(choices);
        picker.clear();
        for (const auto& [name, value] : shown)
            picker.addItem(name);
    }
    const auto chosen = std::ranges::find(shown, current, [](const auto& choice) { return choice.second; });
    picker.setCurrentIndex(chosen == shown.end() ? -1 : static_cast<int>(chosen - shown.begin()));
}

} // namespace

MessagesView::MessagesView(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_recipient(new QComboBox),
      m_channel(new QComboBox),
      m_pages(new QStackedWidget),
      m_list(new MessageList(context)),
      m_field(new QLineEdit),
      m_refresh([this] { refresh(); }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildHead();
    auto* nothing = new UnavailableView;
    nothing->show(QStringLiteral("message"), QStringLiteral("No messages yet"),
                  QStringLiteral("Messages received by the connected Meshtastic radio will appear here."));
    m_pages->addWidget(nothing);
    m_pages->addWidget(m_list);
    layout->addWidget(m_pages, 1);
    buildFoot();

    using M = NightjarModel;
    for (const auto signal : {&M::messagesChanged, &M::nodesChanged, &M::channelsChanged,
                              &M::messageRecipientChanged, &M::messageChannelChanged, &M::localNodeIDChanged})
        connect(&context.model(), signal, &m_refresh, &Coalesced::request);
    refresh();
}

void MessagesView::buildHead() {
    auto* head = new QHBoxLayout;
    head->setContentsMargins(20, 12, 20, 12);
    head->setSpacing(10);
    head->addWidget(new TextLabel(QStringLiteral("Messages"), TextSize::largeTitle));
    head->addStretch();
    addPicker(*head, QStringLiteral("Recipient"), *m_recipient);
    addPicker(*head, QStringLiteral("Channel"), *m_channel);
    static_cast<QVBoxLayout*>(layout())->addLayout(head);
    connect(m_recipient, &QComboBox::activated, this, [this](int place) {
        m_context.model().setMessageRecipient(m_recipients[static_cast<std::size_t>(place)].second);
    });
    connect(m_channel, &QComboBox::activated, this, [this](int place) {
        m_context.model().setMessageChannel(m_channels[static_cast<std::size_t>(place)].second);
    });
}

void MessagesView::addPicker(QHBoxLayout& head, const QString& label, QComboBox& picker) {
    auto* text = new TextLabel(label, TextSize::body, Tint::secondary);
    text->setBuddy(&picker);
    picker.setAccessibleName(label);
    guardFromWheel(&picker); // nobody writes to another by scrolling
    picker.setSizeAdjustPolicy(QComboBox::AdjustToContents);
    picker.setMinimumWidth(narrowestPicker); // its text is cut short before the title is
    picker.setMaximumWidth(widestPicker);
    head.addWidget(text);
    head.addWidget(&picker);
}

void MessagesView::buildFoot() {
    auto* foot = new QHBoxLayout;
    foot->setContentsMargins(20, 10, 20, 14);
    foot->setSpacing(8);
    m_field->setPlaceholderText(QStringLiteral("Message"));
    m_field->setAccessibleName(QStringLiteral("Message"));
    m_field->setTextMargins(6, 0, 6, 0);
    auto* send = new IconButton(QStringLiteral("arrow.up.circle.fill"), QStringLiteral("Send message"),
                                QStringLiteral("Send message"), Tint::blue);
    send->setIconSize({26, 26});
    send->setFixedSize(34, 34);
    foot->addWidget(m_field, 1);
    foot->addWidget(send);
    static_cast<QVBoxLayout*>(layout())->addLayout(foot);
    connect(m_field, &QLineEdit::returnPressed, this, &MessagesView::sendDraft);
    connect(send, &QToolButton::clicked, this, &MessagesView::sendDraft);
}

void MessagesView::takeFocus() {
    m_field->setFocus(Qt::OtherFocusReason);
}

void MessagesView::sendDraft() {
    const std::string draft = m_field->text().toStdString();
    if (trimmed(draft).empty())
        return;
    m_field->clear();
    m_context.model().sendMessage(draft);
}

void MessagesView::refresh() {
    refreshRecipients();
    refreshChannels();
    m_pages->setCurrentIndex(m_context.model().messages().empty() ? 0 : 1);
}

void MessagesView::refreshRecipients() {
    const auto& model = m_context.model();
    const auto current = model.messageRecipient();
    std::vector<std::pair<QString, Recipient>> choices{{QStringLiteral("Everyone"), std::nullopt}};
    for (const auto& node : model.nodes()) {
        if (node.number != model.localNodeID())
            choices.emplace_back(shownLine(model.displayName(node.number)), node.number);
    }
    // Someone who is not heard at present can still be the recipient.
    if (current && std::ranges::find(choices, current, [](const auto& choice) { return choice.second; }) ==
                       choices.end())
        choices.emplace_back(shownLine(model.displayName(*current)), current);
    showChoices(*m_recipient, m_recipients, std::move(choices), current);
}

void MessagesView::refreshChannels() {
    const auto& model = m_context.model();
    std::vector<std::pair<QString, std::uint32_t>> choices;
    for (const auto& channel : model.channels())
        choices.emplace_back(MeshRows::channelName(model, channel.first), channel.first);
    if (!model.channels().contains(model.messageChannel()))
        choices.emplace_back(MeshRows::channelName(model, model.messageChannel()), model.messageChannel());
    showChoices(*m_channel, m_channels, std::move(choices), model.messageChannel());
}

} // namespace nightjar
