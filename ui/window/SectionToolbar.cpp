// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/SectionToolbar.h"

#include "ui/common/Buttons.h"
#include "ui/common/ScanningSection.h"
#include "ui/common/SegmentedControl.h"
#include "ui/common/Spoken.h"
#include "ui/mesh/MeshMap.h"
#include "ui/mesh/MeshSection.h"
#include "ui/text/ShownText.h"
#include "ui/window/WatchWarning.h"

#include <QHBoxLayout>
#include <QPainter>

namespace nightjar {

namespace {

QStringList networkTitles() {
    QStringList titles;
    for (const auto name : networkSectionNames)
        titles << QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    return titles;
}

} // namespace

SectionToolbar::SectionToolbar(ViewContext& context, const Sections& sections, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_sections(sections),
      m_network(new SegmentedControl(QStringLiteral("Network"), networkTitles(), 330)),
      m_scan(makeButton(QStringLiteral("Scan"))),
      m_refresh([this] { refresh(); }) {
    setFixedHeight(51);
    speakAs(*this, Spoken::toolBar);
    setAccessibleName(QStringLiteral("Toolbar"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(14, 10, 14, 11);
    layout->setSpacing(8);
    layout->addWidget(m_network);
    layout->addWidget(new WatchWarning(context));
    layout->addStretch();
    layout->addWidget(m_scan);
    buildMeshControls(*layout);
    auto* settings = new IconButton(QStringLiteral("gear"), QStringLiteral("Settings"),
                                    QStringLiteral("Settings (Ctrl+,)"));
    layout->addWidget(settings);

    connect(m_network, &SegmentedControl::chosen, this,
            [this](int segment) { Q_EMIT chosen(static_cast<NetworkSection>(segment)); });
    connect(m_scan, &QPushButton::clicked, this, [this] {
        if (auto* section = scanning())
            section->scanOrStop();
    });
    connect(settings, &QToolButton::clicked, &context, &ViewContext::settingsRequested);
    for (auto* section : {&sections.bluetooth, &sections.localNetwork})
        connect(section, &ScanningSection::scanTitleChanged, &m_refresh, &Coalesced::request);
    connect(&sections.mesh, &MeshSection::meshtasticSectionChanged, this, &SectionToolbar::refresh);
    using M = NightjarModel;
    for (const auto signal : {&M::nodesChanged, &M::connectedPortChanged, &M::connectionStateChanged})
        connect(&context.model(), signal, &m_refresh, &Coalesced::request);
    refresh();
}

void SectionToolbar::buildMeshControls(QHBoxLayout& layout) {
    m_view = new SegmentedControl(QStringLiteral("View"), {QStringLiteral("Map"), QStringLiteral("Messages")},
                                  180);
    m_fit = new IconButton(QStringLiteral("viewfinder"), QStringLiteral("Fit Meshtastic devices on map"),
                           QStringLiteral("Show all positioned Meshtastic devices"));
    m_reconnect = new IconButton(QStringLiteral("arrow.clockwise"), {}, {});
    for (QWidget* control :
         {static_cast<QWidget*>(m_view), static_cast<QWidget*>(m_fit), static_cast<QWidget*>(m_reconnect)})
        layout.addWidget(control);
    connect(m_view, &SegmentedControl::chosen, this, [this](int segment) {
        m_sections.mesh.setMeshtasticSection(static_cast<MeshtasticSection>(segment));
    });
    connect(m_fit, &QToolButton::clicked, this, [this] { m_sections.mesh.map().fitDevices(); });
    connect(m_reconnect, &QToolButton::clicked, this, &SectionToolbar::reconnect);
}

void SectionToolbar::showSection(NetworkSection section) {
    m_section = section;
    m_network->setCurrent(static_cast<int>(section));
    refresh();
}

ScanningSection* SectionToolbar::scanning() const {
    switch (m_section) {
    case NetworkSection::bluetooth:
        return &m_sections.bluetooth;
    case NetworkSection::localNetwork:
        return &m_sections.localNetwork;
    case NetworkSection::meshtastic:
        break;
    }
    return nullptr;
}

void SectionToolbar::refresh() {
    const auto* section = scanning();
    m_scan->setVisible(section != nullptr);
    if (section && m_scan->text() != section->scanTitle()) {
        m_scan->setText(section->scanTitle());
        m_scan->setAccessibleName(section->scanTitle());
    }
    m_view->setVisible(!section);
    m_reconnect->setVisible(!section);
    m_fit->setVisible(!section && m_sections.mesh.meshtasticSection() == MeshtasticSection::map);
    if (!section)
        refreshMesh();
}

void SectionToolbar::refreshMesh() {
    const auto& model = m_context.model();
    m_view->setCurrent(static_cast<int>(m_sections.mesh.meshtasticSection()));
    m_fit->setEnabled(!MeshMap::positionedMeshtasticDevices(model).empty());
    const auto& port = model.connectedPort();
    m_reconnect->setAccessibleName(port ? QStringLiteral("Reconnect Meshtastic USB base")
                                        : QStringLiteral("Choose Meshtastic USB radio"));
    const QString help = port ? shownLine(*port) + QStringLiteral(". Reconnect the USB base.")
                              : QStringLiteral("Choose a Meshtastic USB radio in Settings");
    m_reconnect->setToolTip(plainToolTip(help));
    // A button has no value of its own: its description carries the state of the connection.
    m_reconnect->setAccessibleDescription(shownLine(model.connectionState()));
}

void SectionToolbar::reconnect() {
    auto& model = m_context.model();
    if (const auto port = model.connectedPort()) {
        model.connect(port);
        return;
    }
    model.setSelectedSettingsTab(SettingsTab::base);
    Q_EMIT m_context.settingsRequested();
}

void SectionToolbar::scanOrReconnect() {
    if (auto* section = scanning())
        section->scanOrStop();
    else
        reconnect();
}

void SectionToolbar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(0, height() - 1, width(), 1, Colors::of(this).separator);
}

} // namespace nightjar
