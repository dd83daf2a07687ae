// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/ModelRig.h"
#include "ui/common/ViewContext.h"
#include "ui/map/MapTiles.h"
#include "ui/rows/SidebarList.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QScrollArea>
#include <QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace nightjar::testing {

/// A section of the main window on a simulated computer: its three columns side by side, on screen.
template <class SectionType>
class ViewRig : public ModelRig {
public:
    ViewRig() { bluetooth.setState(BluetoothRadioState::poweredOn); }

    /// `section` is on screen and active.
    SectionType& open() {
        create();
        settle();
        context.emplace(*model, services(), tiles);
        section.emplace(*context);
        window.emplace();
        window->resize(1320, 770);
        auto* columns = new QHBoxLayout(&*window);
        for (QWidget* column : {section->sidebar(), section->content(), section->inspector()})
            columns->addWidget(column);
        section->sidebar()->setFixedWidth(280);
        section->inspector()->setFixedWidth(320);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&*window));
        section->activate();
        settle();
        return *section;
    }

    /// Until everything that is under way without time passing has come on screen.
    void settle() {
        for (int turn = 0; turn < 4; ++turn) {
            mainThread.runPending();
            QApplication::processEvents();
            QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    void pass(std::chrono::milliseconds time) {
        scheduler.advance(time);
        settle();
    }

    [[nodiscard]] SidebarList& list() { return *section->sidebar()->template findChild<SidebarList*>(); }
    /// "Tracked:" for a title, "name | caption | help of badges" for a row.
    [[nodiscard]] std::vector<std::string> rows() {
        std::vector<std::string> lines;
        const auto& shown = list().rows();
        for (int place = 0; place < shown.rowCount(); ++place) {
            QString line = shown.index(place).data().toString();
            if (shown.isTitle(place)) {
                line += u':';
            } else {
                const Row row = shown.rowAt(place);
                line += QStringLiteral(" | ") + row.caption;
                for (const auto& badge : row.badges)
                    line += QStringLiteral(" | ") + badge.help;
            }
            lines.push_back(line.toStdString());
        }
        return lines;
    }
    void clickRow(const std::string& id) {
        const auto place = list().rows().placeOf(id);
        ASSERT_TRUE(place.has_value()) << id;
        const auto at = list().visualRect(list().model()->index(*place, 0)).center();
        QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, at);
        settle();
    }
    /// What can be done with a row.
    [[nodiscard]] QMenu* menuOf(const std::string& id) {
        Q_EMIT list().menuRequested(id, window->mapToGlobal(QPoint(20, 20)));
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
    void chooseInMenu(const std::string& id, const char* entry) {
        QMenu* menu = menuOf(id);
        ASSERT_TRUE(menu) << id;
        for (QAction* action : menu->actions()) {
            if (action->text() == QString::fromUtf8(entry)) {
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
                settle();
                return;
            }
        }
        ADD_FAILURE() << "no " << entry;
        menu->close();
    }

    /// The control on screen in a column that a screen reader calls so; null when there is none.
    template <class Control>
    [[nodiscard]] static Control* control(QWidget* column, const char* name) {
        for (auto* found : column->findChildren<Control*>()) {
            if (found->isVisible() && found->accessibleName() == QString::fromUtf8(name))
                return found;
        }
        return nullptr;
    }
    template <class Control = QAbstractButton>
    void click(QWidget* column, const char* name) {
        auto* found = control<Control>(column, name);
        ASSERT_TRUE(found) << name;
        EXPECT_TRUE(found->isEnabled()) << name;
        QTest::mouseClick(found, Qt::LeftButton);
        settle();
    }
    /// All that can be read in a column, a line for each label.
    [[nodiscard]] static std::string texts(QWidget* column) {
        QStringList lines;
        for (const auto* label : column->findChildren<QLabel*>()) {
            if (!label->isVisible())
                continue;
            const QString line = label->text().isEmpty() ? label->accessibleName() : label->text();
            lines << QString(line).remove(QChar(0x200b));
        }
        return lines.join(u'\n').toStdString();
    }
    /// What does not fit into a column is cut off.
    [[nodiscard]] static int widthNeeded(QWidget* column) {
        int width = column->minimumSizeHint().width();
        for (const auto* page : column->findChildren<QScrollArea*>()) {
            if (page->isVisible())
                width = std::max(width, page->widget()->minimumSizeHint().width());
        }
        return width;
    }
    /// Controls that the keyboard reaches and a screen reader has no name for.
    [[nodiscard]] std::vector<std::string> nameless() {
        std::vector<std::string> found;
        for (auto* widget : window->template findChildren<QWidget*>()) {
            if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus))
                continue;
            const auto* accessible = QAccessible::queryAccessibleInterface(widget);
            if (!accessible || accessible->text(QAccessible::Name).isEmpty())
                found.emplace_back(widget->metaObject()->className());
        }
        return found;
    }

    MapTiles tiles{MapTileSettings{}};
    std::optional<ViewContext> context;
    std::optional<SectionType> section;
    std::optional<QWidget> window;
};

} // namespace nightjar::testing
