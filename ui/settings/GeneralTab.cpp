// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/GeneralTab.h"

#include "ui/common/Card.h"
#include "ui/common/InspectorPage.h"
#include "ui/common/TextLabel.h"
#include "ui/common/WheelGuard.h"
#include "ui/settings/AlertDeliverySettingsView.h"
#include "ui/settings/MapSettingsView.h"
#include "ui/settings/SettingsPage.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace nightjar {

namespace {

constexpr int smallestRadius = 25;
constexpr int largestRadius = 500;
constexpr int radiusStep = 25;

} // namespace

GeneralTab::GeneralTab(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_model(context.model()),
      m_refresh([this] { refresh(); }),
      m_radius(new QSlider(Qt::Horizontal)),
      m_metres(new TextLabel({})) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* page = makeSettingsPage();
    layout->addWidget(page);
    addRadius(*page->addCard(QStringLiteral("Position alert")));
    page->addWidget(new AlertDeliverySettingsView(m_model.bluetoothTrackers()));
    page->addWidget(new MapSettingsView(context));

    connect(m_radius, &QSlider::valueChanged, this, [this](int metres) {
        m_model.setParkingRadius((metres + radiusStep / 2) / radiusStep * radiusStep);
        refresh(); // from where the handle was let go to the step
    });
    connect(&m_model, &NightjarModel::parkingRadiusChanged, &m_refresh, &Coalesced::request);
    refresh();
}

void GeneralTab::addRadius(Card& card) {
    m_radius->setRange(smallestRadius, largestRadius);
    m_radius->setSingleStep(radiusStep);
    m_radius->setPageStep(radiusStep);
    m_radius->setFixedWidth(220);
    m_radius->setAccessibleName(QStringLiteral("Movement radius"));
    guardFromWheel(m_radius);
    m_metres->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_metres->setMinimumWidth(m_metres->fontMetrics().horizontalAdvance(QStringLiteral("500 m ")));

    auto* control = new QWidget;
    control->setFocusProxy(m_radius);
    auto* layout = new QHBoxLayout(control);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(m_radius);
    layout->addWidget(m_metres);
    card.addControl(m_radius->accessibleName(), control);
    card.addNote(QStringLiteral("A notification is shown after two new positions place the guarded device "
                                "outside this radius. The Mac and its Meshtastic radio must be running and "
                                "connected."));
}

void GeneralTab::refresh() {
    const double radius = m_model.parkingRadius();
    const QSignalBlocker silence(m_radius);
    m_radius->setValue(
        static_cast<int>(std::lround(std::clamp<double>(radius, smallestRadius, largestRadius))));
    m_metres->setText(QString::number(radius, 'f', 0) + QStringLiteral(" m"));
}

} // namespace nightjar
