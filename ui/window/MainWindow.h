// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/ViewContext.h"
#include "ui/window/NetworkSection.h"

#include <QWidget>

#include <array>

class QSplitter;
class QStackedWidget;

namespace nightjar {

class BluetoothSection;
class LocalNetworkSection;
class MeshSection;
class Section;
class SectionToolbar;

/// The main window: a toolbar over three columns, which show the watch that is chosen. A watch of Bluetooth
/// or the local network runs while its section is on screen.
class MainWindow final : public QWidget {
    Q_OBJECT
public:
    explicit MainWindow(ViewContext& context, QWidget* parent = nullptr);
    ~MainWindow() override;

    [[nodiscard]] NetworkSection network() const { return m_network; }
    void setNetwork(NetworkSection network);
    [[nodiscard]] MeshSection& mesh() const { return *m_mesh; }

Q_SIGNALS:
    void closed();

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildColumns();
    void addShortcuts();
    void goTo(NetworkSection network);
    void showColumns();
    [[nodiscard]] Section& section(NetworkSection network) const;

    ViewContext& m_context;
    NetworkSection m_network;
    BluetoothSection* m_bluetooth;
    LocalNetworkSection* m_localNetwork;
    MeshSection* m_mesh;
    SectionToolbar* m_toolbar;
    QSplitter* m_splitter;
    std::array<QStackedWidget*, 3> m_columns{};
    bool m_hasAppeared = false;
};

} // namespace nightjar
