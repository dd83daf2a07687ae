// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"
#include "ui/map/MapTiles.h"

#include <QFileDialog>
#include <QPointer>
#include <QWidget>

class QPushButton;

namespace nightjar {

class Card;
class ElidedLabel;
class SwitchControl;
class TextLabel;

/// Where the pictures of the maps come from: a server that the user agreed to, or a file.
class MapSettingsView final : public QWidget {
    Q_OBJECT
public:
    explicit MapSettingsView(ViewContext& context, QWidget* parent = nullptr);

private:
    QWidget* makeFileRow();
    void chooseFile();
    void useFile(const std::optional<QString>& path);
    void refresh();
    Preferences& m_preferences;
    MapTiles& m_tiles;
    Coalesced m_refresh;
    QString m_failure; ///< why the file that was chosen last is not used
    QPointer<QFileDialog> m_dialog;
    SwitchControl* m_streetMap;
    TextLabel* m_note;
    ElidedLabel* m_file;
    QPushButton* m_choose;
    QPushButton* m_remove;
    TextLabel* m_problem;
};

} // namespace nightjar
