// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/BaseStationPanel.h"

#include "ui/common/Buttons.h"
#include "ui/common/FocusHeirs.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"
#include "ui/mesh/MeshRows.h"
#include "ui/text/ShownText.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace nightjar {

namespace {

constexpr int left = 18;
constexpr int right = 14;

QHBoxLayout* makeLine(QWidget* row, int top = 2, int bottom = 2) {
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(left, top, right, bottom);
    layout->setSpacing(8);
    return layout;
}

TextLabel* makeHeading(const QString& text) {
    auto* heading = new TextLabel(text, TextSize::caption, Tint::secondary);
    QFont font = heading->font();
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    return heading;
}

TextLabel* makeNote(const QString& text) {
    auto* note = new TextLabel(text, TextSize::caption, Tint::secondary);
    note->setWordWrap(true);
    return note;
}

} // namespace

BaseStationPanel::BaseStationPanel(ViewContext& context, QWidget* parent)
    : QWidget(parent), m_context(context), m_layout(new QVBoxLayout(this)) {
    m_layout->setContentsMargins(0, 8, 0, 0);
    m_layout->setSpacing(2);
    buildScanRow();
    m_ports = new QWidget;
    m_layout->addWidget(m_ports);
    auto* ports = new QVBoxLayout(m_ports);
    ports->setContentsMargins(0, 0, 0, 0);
    ports->setSpacing(0);
    buildNothingFound();
    m_note = makeNote(QStringLiteral("Activate a device to verify that it answers as a Meshtastic radio."));
    m_note->setContentsMargins(left, 0, right, 4);
    m_layout->addWidget(m_note);
    buildActiveBase();
    refresh();
}

void BaseStationPanel::buildScanRow() {
    auto* row = new QWidget;
    auto* line = makeLine(row, 0, 0);
    line->addWidget(makeHeading(QStringLiteral("Available USB devices")), 1);
    m_scan = makeButton(QStringLiteral("Scan"), ButtonLook::flat);
    connect(m_scan, &QPushButton::clicked, this, [this] { m_context.model().refreshPorts(); });
    line->addWidget(m_scan);
    m_layout->addWidget(row);
}

void BaseStationPanel::buildNothingFound() {
    m_nothingFound = new QWidget;
    auto* layout = new QVBoxLayout(m_nothingFound);
    layout->setContentsMargins(left, 4, right, 6);
    layout->setSpacing(4);
    layout->addWidget(new TextLabel(QStringLiteral("No USB radios found"), TextSize::headline));
    layout->addWidget(makeNote(QStringLiteral("Connect a Meshtastic radio by USB, then scan again.")));
    auto* scan = makeButton(QStringLiteral("Scan Again"));
    connect(scan, &QPushButton::clicked, this, [this] { m_context.model().refreshPorts(); });
    layout->addWidget(scan, 0, Qt::AlignLeft);
    m_layout->addWidget(m_nothingFound);
}

void BaseStationPanel::buildActiveBase() {
    m_activeBase = new QWidget;
    auto* layout = new QVBoxLayout(m_activeBase);
    layout->setContentsMargins(0, 6, 0, 2);
    layout->setSpacing(0);
    auto* heading = makeHeading(QStringLiteral("Active base station"));
    heading->setContentsMargins(left, 0, 0, 2);
    layout->addWidget(heading);

    auto* row = new QWidget;
    auto* line = makeLine(row);
    line->addWidget(new SymbolView(QStringLiteral("cable.connector"), 21, Tint::green));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(m_baseName = new ElidedLabel);
    texts->addWidget(m_basePort = new ElidedLabel(TextSize::caption, Tint::secondary));
    line->addLayout(texts, 1);
    auto* disconnect = makeButton(QStringLiteral("Disconnect"));
    connect(disconnect, &QPushButton::clicked, this, [this] { m_context.model().disconnect(); });
    line->addWidget(disconnect);
    layout->addWidget(row);
    m_layout->addWidget(m_activeBase);
}

QWidget* BaseStationPanel::makePortRow(const std::string& port) {
    const QString name = MeshRows::portName(m_context.model(), port);
    auto* row = new QWidget;
    auto* line = makeLine(row);
    line->addWidget(new SymbolView(QStringLiteral("cable.connector"), 21, Tint::blue));
    auto* label = new ElidedLabel;
    label->setFullText(name);
    line->addWidget(label, 1);
    auto* verify = makeButton(QStringLiteral("Verify & Connect"));
    verify->setAccessibleDescription(name);
    verify->setToolTip(plainToolTip(shownLine(port)));
    connect(verify, &QPushButton::clicked, this, [this, port] { m_context.model().connect(port); });
    line->addWidget(verify);
    return row;
}

void BaseStationPanel::rebuildPorts(const std::vector<std::string>& ports) {
    std::vector<QString> shown;
    for (const auto& port : ports)
        shown.push_back(MeshRows::portName(m_context.model(), port) + QChar::LineFeed + shownLine(port));
    if (shown == m_shownPorts)
        return;
    m_shownPorts = std::move(shown);
    while (auto* item = m_ports->layout()->takeAt(0)) {
        // The click on a button of this row may be what brought us here.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const auto& port : ports)
        m_ports->layout()->addWidget(makePortRow(port));
}

void BaseStationPanel::refresh() {
    const FocusHeirs heirs(*this, {m_scan});
    const auto& model = m_context.model();
    const auto& connected = model.connectedPort();
    auto ports = model.availablePorts();
    std::erase_if(ports, [&connected](const auto& port) { return port == connected; });
    rebuildPorts(ports);
    m_ports->setVisible(!ports.empty());
    m_note->setVisible(!ports.empty());
    m_nothingFound->setVisible(ports.empty() && !connected);

    m_activeBase->setVisible(connected.has_value());
    if (!connected)
        return;
    const auto* base = MeshRows::find(model, model.localNodeID());
    m_baseName->setFullText(base ? MeshRows::title(*base) : MeshRows::portName(model, *connected));
    m_basePort->setFullText(shownLine(connected->substr(connected->find_last_of('/') + 1)));
}

} // namespace nightjar
