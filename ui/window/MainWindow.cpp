// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/MainWindow.h"

#include "ui/bluetooth/BluetoothSection.h"
#include "ui/common/Spoken.h"
#include "ui/mesh/MeshSection.h"
#include "ui/network/LocalNetworkSection.h"
#include "ui/style/Colors.h"
#include "ui/window/PageFade.h"
#include "ui/window/SectionToolbar.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace nightjar {

namespace {

struct ColumnWidth {
    int minimum, ideal, maximum;
};
constexpr std::array<ColumnWidth, 3> columnWidths{
    {{240, 280, 340}, {480, 760, QWIDGETSIZE_MAX}, {280, 320, 380}}};

/// A column on its own ground. What it shows has no say in its size: asking all of it would take longer than
/// everything else at the start.
class Column final : public QStackedWidget {
public:
    Column(QColor Colors::*ground, const ColumnWidth& width) : m_ground(ground), m_width(width) {
        setMinimumWidth(width.minimum);
        setMaximumWidth(width.maximum);
    }
    [[nodiscard]] QSize sizeHint() const override { return {m_width.ideal, 0}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {m_width.minimum, 0}; }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Colors::of(this).*m_ground); }

private:
    QColor Colors::*m_ground;
    const ColumnWidth& m_width;
};

void openMenuAtFocus() {
    QWidget* focus = QApplication::focusWidget();
    if (!focus)
        return;
    const QPoint middle = focus->rect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, middle, focus->mapToGlobal(middle));
    QApplication::sendEvent(focus, &event);
}

} // namespace

MainWindow::MainWindow(ViewContext& context, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_network(savedNetworkSection(context.platform().preferences)),
      m_bluetooth(new BluetoothSection(context)),
      m_localNetwork(new LocalNetworkSection(context)),
      m_mesh(new MeshSection(context)),
      m_splitter(new QSplitter(Qt::Horizontal)) {
    setWindowTitle(QStringLiteral("Halvard Nightjar"));
    speakAs(*this, Spoken::window);
    setMinimumSize(1080, 680);
    resize(QSize(1320, 820).boundedTo(screen()->availableSize()));
    for (Section* section : {static_cast<Section*>(m_bluetooth), static_cast<Section*>(m_localNetwork),
                             static_cast<Section*>(m_mesh)})
        section->setParent(this);
    m_toolbar = new SectionToolbar(context, {*m_bluetooth, *m_localNetwork, *m_mesh});
    connect(m_toolbar, &SectionToolbar::chosen, this, &MainWindow::setNetwork);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toolbar);
    layout->addWidget(m_splitter, 1);
    buildColumns();
    addShortcuts();
    m_toolbar->showSection(m_network);
    showColumns();
}

MainWindow::~MainWindow() = default;

void MainWindow::buildColumns() {
    m_splitter->setChildrenCollapsible(false);
    m_columns = {new Column(&Colors::sidebar, columnWidths[0]), new Column(&Colors::content, columnWidths[1]),
                 new Column(&Colors::window, columnWidths[2])};
    QList<int> widths;
    for (std::size_t place = 0; place < m_columns.size(); ++place) {
        auto* column = m_columns[place];
        m_splitter->addWidget(column);
        m_splitter->setStretchFactor(static_cast<int>(place), place == 1 ? 1 : 0);
        widths << columnWidths[place].ideal;
    }
    m_splitter->setSizes(widths);
    // A splitter puts the newest child first: for a screen reader the columns would be read backwards.
    for (auto* column : m_columns)
        column->raise();
    for (int place = 1; place < m_splitter->count(); ++place)
        m_splitter->handle(place)->raise();
}

void MainWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(Qt::CTRL | Qt::Key_1, [this] { goTo(NetworkSection::bluetooth); });
    add(Qt::CTRL | Qt::Key_2, [this] { goTo(NetworkSection::localNetwork); });
    add(Qt::CTRL | Qt::Key_3, [this] { goTo(NetworkSection::meshtastic); });
    add(Qt::Key_F5, [this] { m_toolbar->scanOrReconnect(); });
    add(Qt::CTRL | Qt::Key_Comma, [this] { Q_EMIT m_context.settingsRequested(); });
    add(Qt::CTRL | Qt::Key_Q, [this] { close(); });
    add(Qt::SHIFT | Qt::Key_F10, openMenuAtFocus); // not every keyboard has the menu key
}

void MainWindow::goTo(NetworkSection network) {
    setNetwork(network);
    section(m_network).takeFocus();
}

/// The toolbar, then column after column, in whatever order their parts were made.
bool MainWindow::focusNextPrevChild(bool next) {
    const auto areaOf = [this](const QWidget* widget) {
        if (m_toolbar->isAncestorOf(widget))
            return std::ptrdiff_t{-1};
        const auto has = [widget](const QWidget* column) { return column->isAncestorOf(widget); };
        return std::ranges::find_if(m_columns, has) - m_columns.begin();
    };
    QList<QWidget*> stops;
    QWidget* now = focusWidget();
    for (QWidget* it = nextInFocusChain(); it != this; it = it->nextInFocusChain()) {
        const bool isStop = (it->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !it->focusProxy();
        if (it == now || (isStop && it->window() == this && it->isEnabled() && it->isVisible()))
            stops << it;
    }
    if (stops.isEmpty())
        return false;
    std::ranges::stable_sort(stops, {}, areaOf);
    const auto place = stops.indexOf(now);
    const auto step = next ? place + 1 : place < 0 ? stops.size() - 1 : place - 1 + stops.size();
    stops[step % stops.size()]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

Section& MainWindow::section(NetworkSection network) const {
    switch (network) {
    case NetworkSection::bluetooth:
        return *m_bluetooth;
    case NetworkSection::localNetwork:
        return *m_localNetwork;
    case NetworkSection::meshtastic:
        break;
    }
    return *m_mesh;
}

void MainWindow::setNetwork(NetworkSection network) {
    if (network == m_network)
        return;
    const auto former = std::exchange(m_network, network);
    saveNetworkSection(m_context.platform().preferences, network);
    m_toolbar->showSection(network);
    auto& content = *m_columns[1];
    const QPixmap picture = content.isVisible() ? content.grab() : QPixmap();
    if (m_hasAppeared)
        section(former).deactivate();
    showColumns();
    // Who is told of the end of a watch may choose another section: only what is on screen is watched.
    if (m_network != network)
        return;
    fadeAway(picture, content);
    if (m_hasAppeared)
        section(network).activate();
    if (m_network != network)
        section(network).deactivate();
}

void MainWindow::showColumns() {
    auto& shown = section(m_network);
    const std::array pages{shown.sidebar(), shown.content(), shown.inspector()};
    for (std::size_t place = 0; place < pages.size(); ++place) {
        auto* column = m_columns[place];
        if (column->indexOf(pages[place]) < 0)
            column->addWidget(pages[place]);
        column->setCurrentWidget(pages[place]);
    }
}

void MainWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (std::exchange(m_hasAppeared, true))
        return;
    section(m_network).activate();
    section(m_network).takeFocus();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

void MainWindow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Colors::of(this).window);
}

} // namespace nightjar
