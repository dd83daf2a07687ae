// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/SettingsWindow.h"

#include "ui/common/Spoken.h"
#include "ui/settings/AboutTab.h"
#include "ui/settings/GeneralTab.h"
#include "ui/settings/RadioSettingsView.h"
#include "ui/settings/SettingsPage.h"

#include <QShortcut>
#include <QTabBar>
#include <QVBoxLayout>

namespace nightjar {

SettingsWindow::SettingsWindow(ViewContext& context, const QString& version, QWidget* parent)
    : QWidget(parent, Qt::Window), m_model(context.model()) {
    setWindowTitle(QStringLiteral("Settings"));
    speakAs(*this, Spoken::window);
    resize(520, 650);
    setMinimumSize(480, 360);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 12, 0, 0);
    layout->addWidget(&m_tabs);
    m_tabs.setDocumentMode(true);
    m_tabs.tabBar()->setAccessibleName(QStringLiteral("Settings"));
    m_tabs.tabBar()->setExpanding(false);
    m_tabs.setUsesScrollButtons(false);
    // In the order of SettingsTab.
    addTab(new GeneralTab(context), QStringLiteral("General"));
    addTab(new RadioSettingsView(context), QStringLiteral("Base"));
    addTab(new AboutTab(version), QStringLiteral("About"));
    showSelectedTab();
    connect(&m_tabs, &QTabWidget::currentChanged, this,
            [this](int tab) { m_model.setSelectedSettingsTab(static_cast<SettingsTab>(tab)); });
    connect(&m_model, &NightjarModel::selectedSettingsTabChanged, this, &SettingsWindow::showSelectedTab);
    addShortcuts();
}

void SettingsWindow::open() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void SettingsWindow::addTab(QWidget* tab, const QString& title) {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 12, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHairline());
    layout->addWidget(tab, 1);
    m_tabs.addTab(page, title);
}

void SettingsWindow::addShortcuts() {
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
}

void SettingsWindow::showSelectedTab() {
    m_tabs.setCurrentIndex(static_cast<int>(m_model.selectedSettingsTab()));
}

} // namespace nightjar
