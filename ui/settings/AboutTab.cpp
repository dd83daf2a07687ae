// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/AboutTab.h"

#include "ui/common/Card.h"
#include "ui/common/InspectorPage.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"
#include "ui/settings/SettingsPage.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nightjar {

namespace {

struct NetworkType {
    const char* symbol;
    const char* name;
    const char* text;
};

constexpr NetworkType networkTypes[] = {
    {"sensor.tag.radiowaves.forward.fill", "Meshtastic",
     "Long-range positions and messages through a connected mesh radio."},
    {"dot.radiowaves.left.and.right", "Bluetooth",
     "Nearby signal and the Mac location where a chosen device was last heard."},
    {"network", "Local Network", "Availability of Bonjour services on the same Wi-Fi or Ethernet network."},
};

QWidget* makeRow(const NetworkType& type) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(12);
    layout->addWidget(new SymbolView(QString::fromUtf8(type.symbol), 22, Tint::blue));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(new TextLabel(QString::fromUtf8(type.name)));
    auto* text = new TextLabel(QString::fromUtf8(type.text), TextSize::caption, Tint::secondary);
    text->setWordWrap(true);
    texts->addWidget(text);
    layout->addLayout(texts, 1);
    return row;
}

} // namespace

AboutTab::AboutTab(const QString& version, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* page = makeSettingsPage();
    layout->addWidget(page);

    auto* about = page->addCard({});
    auto* title = new TextLabel(QStringLiteral("Halvard Nightjar ") + version, TextSize::title);
    title->setContentsMargins(12, 10, 12, 0);
    about->addRow(title);
    about->addNote(QStringLiteral("Halvard utility"));
    addTextRow(
        *about,
        QStringLiteral("Meshtastic compatibility is provided by halvard-meshtastic-bridge, a program that "
                       "is distributed separately and runs beside Nightjar. Nightjar is not affiliated "
                       "with the Meshtastic project."));

    auto* types = page->addCard(QStringLiteral("Network types"));
    for (const NetworkType& type : networkTypes)
        types->addRow(makeRow(type));
    addTextRow(*types,
               QStringLiteral("A missing Bluetooth or Bonjour signal can also be caused by sleep, radio "
                              "conditions or network changes; it is not proof that an item was moved."));
}

} // namespace nightjar
