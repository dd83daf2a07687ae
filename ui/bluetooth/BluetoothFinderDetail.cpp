// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothFinderDetail.h"

#include "ui/bluetooth/FinderReading.h"
#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/Spoken.h"
#include "ui/common/SwitchControl.h"
#include "ui/common/SymbolLabel.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nightjar {

namespace {

constexpr int cardWidth = 340;
constexpr int noteWidth = 400;

} // namespace

BluetoothFinderDetail::BluetoothFinderDetail(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_name(new ElidedLabel(TextSize::headline, Tint::secondary)),
      m_symbol(new SymbolView({}, 104, Tint::secondary)),
      m_proximity(new TextLabel({}, TextSize::largeTitle)),
      m_strength(new TextLabel({}, TextSize::title, Tint::secondary)),
      m_trend(new SymbolLabel(TextSize::headline)),
      m_sound(new SwitchControl(QStringLiteral("Sound guidance"))),
      m_stop(makeButton(QStringLiteral("Stop Finding"), ButtonLook::large)),
      m_settings(makeButton(QStringLiteral("Open Tracker Settings"))) {
    speakAs(*this, Spoken::group);
    layOut();
    auto& manager = context.bluetoothTrackers();
    connect(m_sound, &QCheckBox::clicked, this,
            [&manager](bool isOn) { manager.setFinderSoundEnabled(isOn); });
    connect(m_stop, &QPushButton::clicked, this, [&manager] { manager.stopFinding(); });
    connect(m_settings, &QPushButton::clicked, this, [this] {
        m_context.model().setSelectedSettingsTab(SettingsTab::general);
        Q_EMIT m_context.settingsRequested();
    });
}

void BluetoothFinderDetail::layOut() {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(40, 24, 40, 24);
    column->setSpacing(6);
    column->addStretch(5);
    m_name->setAlignment(Qt::AlignCenter);
    column->addWidget(m_name);
    column->addSpacing(16);
    column->addWidget(m_symbol, 0, Qt::AlignHCenter);
    column->addSpacing(10);
    for (auto* text : {m_proximity, m_strength}) {
        text->setAlignment(Qt::AlignHCenter);
        column->addWidget(text);
    }
    column->addSpacing(4);
    column->addWidget(m_trend, 0, Qt::AlignHCenter);
    column->addSpacing(18);

    auto* card = new Card({});
    card->setFixedWidth(cardWidth);
    card->addControl(QStringLiteral("Sound guidance"), m_sound);
    m_lastSeen = card->addMetric(QStringLiteral("Last seen"));
    column->addWidget(card, 0, Qt::AlignHCenter);
    column->addSpacing(14);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch();
    buttons->addWidget(m_stop);
    buttons->addWidget(m_settings);
    buttons->addStretch();
    m_settings->setMinimumHeight(36);
    column->addLayout(buttons);
    column->addSpacing(14);

    auto* note = new TextLabel(QStringLiteral("Bluetooth signal indicates proximity, not an exact distance. "
                                              "Walls, people and nearby objects can change the reading."),
                               TextSize::caption, Tint::secondary);
    note->setAlignment(Qt::AlignHCenter);
    note->setWordWrap(true);
    note->setFixedWidth(noteWidth);
    auto* foot = new QHBoxLayout;
    foot->addStretch();
    foot->addWidget(note);
    foot->addStretch();
    column->addLayout(foot);
    column->addStretch(6);
}

void BluetoothFinderDetail::refresh(const QString& name) {
    const auto& manager = m_context.bluetoothTrackers();
    const auto id = manager.trackedID();
    const auto* device = id ? manager.deviceWith(*id) : nullptr;
    const auto reading = finderReading(device, m_context.now());
    m_name->setFullText(name);
    m_symbol->show(reading.symbol, reading.tint);
    m_proximity->setTint(reading.isLost ? Tint::text : reading.tint);
    m_proximity->setText(reading.proximity);
    m_strength->setText(reading.strength);
    m_trend->show(reading.trendSymbol, Tint::secondary, reading.trend);
    m_sound->show(manager.finderSoundEnabled());
    m_lastSeen->setValue(device ? m_context.relativeTime(device->lastSeen) : QStringLiteral("Not heard yet"));
    setAccessibleName(name);
    setAccessibleDescription(reading.proximity + QStringLiteral(", ") + reading.trend);
}

} // namespace nightjar
