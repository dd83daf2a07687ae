// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/ViewContext.h"

#include <QTabWidget>
#include <QWidget>

namespace nightjar {

/// The settings in three tabs. The tab shown is the model's `selectedSettingsTab`, in both directions. Holds
/// up nothing; Escape and Ctrl+W close it.
class SettingsWindow final : public QWidget {
    Q_OBJECT
public:
    SettingsWindow(ViewContext& context, const QString& version, QWidget* parent = nullptr);
    /// Shows it, or brings it to the front.
    void open();

private:
    void addTab(QWidget* tab, const QString& title);
    void addShortcuts();
    void showSelectedTab();
    NightjarModel& m_model;
    QTabWidget m_tabs;
};

} // namespace nightjar
