// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/ViewContext.h"

#include <QWidget>

#include <string>
#include <vector>

class QPushButton;
class QVBoxLayout;

namespace nightjar {

class ElidedLabel;
class TextLabel;

/// The USB radios that may be the base, and the one that is.
class BaseStationPanel final : public QWidget {
    Q_OBJECT
public:
    explicit BaseStationPanel(ViewContext& context, QWidget* parent = nullptr);
    void refresh();

private:
    void buildScanRow();
    void buildActiveBase();
    void buildNothingFound();
    void rebuildPorts(const std::vector<std::string>& ports);
    QWidget* makePortRow(const std::string& port);

    ViewContext& m_context;
    QVBoxLayout* m_layout;
    QPushButton* m_scan = nullptr;
    QWidget* m_ports = nullptr;
    QWidget* m_nothingFound = nullptr;
    TextLabel* m_note = nullptr;
    QWidget* m_activeBase = nullptr;
    ElidedLabel* m_baseName = nullptr;
    ElidedLabel* m_basePort = nullptr;
    std::vector<QString> m_shownPorts; ///< their names, in order
};

} // namespace nightjar
