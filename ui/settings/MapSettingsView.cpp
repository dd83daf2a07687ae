// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/MapSettingsView.h"

#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/FocusHeirs.h"
#include "ui/common/SwitchControl.h"
#include "ui/common/TextLabel.h"
#include "ui/map/MapSource.h"
#include "ui/settings/SettingsPage.h"
#include "ui/text/ShownText.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace nightjar {

MapSettingsView::MapSettingsView(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_preferences(context.platform().preferences),
      m_tiles(context.tiles()),
      m_refresh([this] { refresh(); }),
      m_streetMap(new SwitchControl(QStringLiteral("Load street map"))),
      m_file(new ElidedLabel(TextSize::body, Tint::secondary)),
      m_choose(makeButton(QStringLiteral("Choose…"))),
      m_remove(makeButton(QStringLiteral("Remove"))) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* card = new Card(QStringLiteral("Map"));
    layout->addWidget(card);
    card->addControl(m_streetMap->accessibleName(), m_streetMap);
    m_note = card->addNote({});
    card->addRow(makeFileRow());
    m_problem = card->addNote({});
    m_problem->setTint(Tint::orange);
    putInTabOrder({m_streetMap, m_choose, m_remove});

    connect(m_streetMap, &SwitchControl::clicked, this,
            [this](bool isOn) { MapSource::allowStreetMap(m_preferences, m_tiles, isOn); });
    connect(m_choose, &QPushButton::clicked, this, &MapSettingsView::chooseFile);
    connect(m_remove, &QPushButton::clicked, this, [this] { useFile({}); });
    connect(&m_tiles, &MapTiles::changed, &m_refresh, &Coalesced::request);
    refresh();
}

QWidget* MapSettingsView::makeFileRow() {
    m_choose->setAccessibleName(QStringLiteral("Choose map file"));
    m_remove->setAccessibleName(QStringLiteral("Remove map file"));
    m_file->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(12, 7, 12, 7);
    layout->setSpacing(8);
    layout->addWidget(new TextLabel(QStringLiteral("Map file")));
    layout->addWidget(m_file, 1);
    layout->addWidget(m_choose);
    layout->addWidget(m_remove);
    return row;
}

void MapSettingsView::chooseFile() {
    if (m_dialog)
        return;
    m_dialog = new QFileDialog(this, QStringLiteral("Choose a map file"));
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setFileMode(QFileDialog::ExistingFile);
    m_dialog->setOption(QFileDialog::ReadOnly); // nothing is renamed or deleted on the way
    const auto file = MapSource::localFile(m_preferences);
    m_dialog->setDirectory(file ? QFileInfo(*file).absolutePath() : QDir::homePath());
    m_dialog->setNameFilters({QStringLiteral("Map files (*.mbtiles)"), QStringLiteral("All files (*)")});
    connect(m_dialog, &QFileDialog::fileSelected, this, [this](const QString& path) { useFile(path); });
    m_dialog->open();
}

void MapSettingsView::useFile(const std::optional<QString>& path) {
    MapSource::useLocalFile(m_preferences, m_tiles, path, [view = QPointer(this)](const auto& result) {
        if (!view)
            return;
        view->m_failure = result ? QString() : result.error();
        view->m_refresh.request();
    });
}

void MapSettingsView::refresh() {
    m_streetMap->show(m_tiles.isStreetMapEnabled());
    const auto server = MapSource::serverName(m_preferences);
    const auto note =
        QStringLiteral("Street map tiles are fetched from %1. The server can see which area you "
                       "look at.");
    const QString name = shownLine(server.toStdString());
    m_note->setText(note.arg(breakable(name)));
    m_note->setAccessibleName(note.arg(name));
    const auto file = MapSource::localFile(m_preferences);
    m_file->setFullText(file ? shownLine(QFileInfo(*file).fileName().toStdString()) : QStringLiteral("None"));
    const FocusHeirs heirs(*this, {m_choose});
    m_remove->setVisible(file.has_value());
    m_problem->setText(shownLine(m_failure.toStdString()));
    m_problem->setVisible(!m_failure.isEmpty());
}

} // namespace nightjar
