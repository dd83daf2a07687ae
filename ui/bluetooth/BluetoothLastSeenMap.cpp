// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothLastSeenMap.h"

#include "ui/bluetooth/BluetoothRows.h"
#include "ui/common/Spoken.h"
#include "ui/common/SymbolLabel.h"
#include "ui/common/FloatingPanel.h"
#include "ui/common/TextLabel.h"
#include "ui/text/ShownText.h"

#include <QVBoxLayout>

#include <algorithm>

namespace nightjar {

namespace {

constexpr int margin = 12;
constexpr int besideButton = 160; ///< the map's own, in its corner
constexpr double minimumSpan = 0.01;

} // namespace

BluetoothLastSeenMap::BluetoothLastSeenMap(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_map(new MapView(context.tiles())),
      m_caption(new FloatingPanel(this)),
      m_title(new SymbolLabel(TextSize::headline)),
      m_lastSeen(new TextLabel({}, TextSize::caption, Tint::secondary)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_map);

    speakAs(*m_caption, Spoken::text);
    m_caption->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* lines = new QVBoxLayout(m_caption);
    lines->setContentsMargins(14, 10, 16, 11);
    lines->setSpacing(3);
    lines->addWidget(m_title, 0, Qt::AlignLeft);
    lines->addWidget(m_lastSeen);
    m_title->show(QStringLiteral("location.fill"), Tint::blue, Tint::text,
                  QStringLiteral("Last seen with this Mac"));
    m_caption->raise();
    connect(m_map, &MapView::streetMapRequested, &context, &ViewContext::streetMapRequested);
}

void BluetoothLastSeenMap::show(const TrackedBluetoothDevice& device) {
    const MapCoordinate place{*device.latitude, *device.longitude};
    const QString name = shownLine(device.name);
    const QString lastSeen =
        QStringLiteral("%1 · %2").arg(m_context.relativeTime(device.lastSeen), strengthText(device.lastRSSI));
    m_map->setMarkers({{.id = QString::fromStdString(device.id.text()),
                        .at = place,
                        .title = name,
                        .symbol = QStringLiteral("dot.radiowaves.left.and.right"),
                        .tint = Tint::blue,
                        .accessibleText = name + QStringLiteral(", last seen ") + lastSeen}});
    moveTo(device.id, place);
    m_lastSeen->setText(lastSeen);
    m_caption->setAccessibleName(m_title->text() + QStringLiteral(", ") + lastSeen);
    placeCaption();
}

void BluetoothLastSeenMap::moveTo(const Uuid& id, const MapCoordinate& place) {
    if (id != m_shownID)
        m_map->fitPositions({place}, minimumSpan, false);
    else if (place != m_shownPlace)
        m_map->showRegion({place, m_map->region().latitudeDelta, m_map->region().longitudeDelta}, true);
    m_shownID = id;
    m_shownPlace = place;
}

void BluetoothLastSeenMap::resizeEvent(QResizeEvent*) {
    placeCaption();
}

void BluetoothLastSeenMap::placeCaption() {
    const QSize size = m_caption->sizeHint().boundedTo({width() - 2 * margin, height()});
    m_caption->setGeometry({{std::max((width() - size.width()) / 2, besideButton), margin}, size});
}

} // namespace nightjar
