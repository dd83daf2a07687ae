// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/AlertDeliverySettingsView.h"

#include "app/bluetooth/BluetoothTrackerManager.h"
#include "core/base/Text.h"
#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/SwitchControl.h"
#include "ui/common/TextLabel.h"
#include "ui/settings/SettingsPage.h"
#include "ui/text/ShownText.h"

#include <QLineEdit>
#include <QVBoxLayout>

namespace nightjar {

namespace {

constexpr int longestRecipient = 320; // of an e-mail address

QWidget* makeFieldRow(const QString& label, QLineEdit* field) {
    auto* row = new QWidget;
    auto* layout = new QVBoxLayout(row);
    layout->setContentsMargins(12, 7, 12, 9);
    layout->setSpacing(5);
    auto* text = new TextLabel(label);
    text->setBuddy(field);
    layout->addWidget(text);
    layout->addWidget(field);
    return row;
}

} // namespace

AlertDeliverySettingsView::AlertDeliverySettingsView(BluetoothTrackerManager& manager, QWidget* parent)
    : QWidget(parent),
      m_manager(manager),
      m_refresh([this] { refresh(); }),
      m_recipient(new QLineEdit),
      m_enabled(new SwitchControl(QStringLiteral("Send signal-loss alerts with Messages"))),
      m_test(makeButton(QStringLiteral("Send Test Alert"))) {
    build();
    connect(m_recipient, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_manager.setIMessageRecipient(text.toStdString());
        m_manager.updateIMessageStatus();
    });
    connect(m_recipient, &QLineEdit::editingFinished, &m_refresh, &Coalesced::request);
    connect(m_enabled, &SwitchControl::clicked, this, [this](bool isOn) {
        m_manager.setIMessageAlertsEnabled(isOn);
        m_manager.updateIMessageStatus();
    });
    connect(m_test, &QPushButton::clicked, this, [this] { m_manager.sendTestIMessage(); });
    for (auto changed : {&BluetoothTrackerManager::iMessageRecipientChanged,
                         &BluetoothTrackerManager::iMessageAlertsEnabledChanged,
                         &BluetoothTrackerManager::iMessageStatusChanged})
        connect(&m_manager, changed, &m_refresh, &Coalesced::request);
    refresh();
}

void AlertDeliverySettingsView::build() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* card = new Card(QStringLiteral("Alert delivery"));
    layout->addWidget(card);

    auto* heading = new TextLabel(QStringLiteral("Messages alert"), TextSize::headline);
    heading->setContentsMargins(12, 8, 12, 5);
    card->addRow(heading);
    const auto label = QStringLiteral("iPhone number or Apple Account email");
    m_recipient->setAccessibleName(label);
    m_recipient->setMaxLength(longestRecipient);
    m_recipient->setTextMargins(6, 0, 6, 0);
    card->addRow(makeFieldRow(label, m_recipient));
    card->addControl(m_enabled->accessibleName(), m_enabled);
    m_status = card->addMetric(QStringLiteral("Status"));
    addButtonRow(*card, {m_test});
    card->addNote(QStringLiteral(
        "Messages must be signed in on this Mac. The first test may ask for permission to control Messages. "
        "Local notifications remain enabled if message delivery fails."));
    putInTabOrder({m_recipient, m_enabled, m_test});
}

void AlertDeliverySettingsView::refresh() {
    const auto recipient = QString::fromStdString(m_manager.iMessageRecipient());
    if (!m_recipient->hasFocus() && m_recipient->text() != recipient)
        m_recipient->setText(recipient);
    const bool recipientIsEmpty = trimmed(m_manager.iMessageRecipient()).empty();
    m_enabled->show(m_manager.iMessageAlertsEnabled());
    m_enabled->setEnabled(!recipientIsEmpty);
    m_status->setValue(shownLine(m_manager.iMessageStatus()));
    m_test->setEnabled(!recipientIsEmpty);
}

} // namespace nightjar
