// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/rows/SidebarList.h"
#include "platform/simulated/FakeScheduler.h"
#include "ui/common/Throttled.h"

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

class SidebarListTest : public ::testing::Test {
protected:
    SidebarListTest() {
        list.resize(280, 400);
        list.setSections({{QStringLiteral("Nearby"), {"a", "b", "c"}}});
        list.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&list));
        QObject::connect(&list, &SidebarList::selected, &list,
                         [this](const std::string& id) { chosen.push_back(id); });
    }
    static Row rowOf(const std::string& id) {
        return {.symbol = QStringLiteral("network"),
                .title = QString::fromStdString(id),
                .caption = QStringLiteral("Available now"),
                .badges = {{QStringLiteral("scope"), Tint::green, QStringLiteral("Tracked")}}};
    }
    void click(int place, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(list.viewport(), button, {}, list.visualRect(list.rows().index(place)).center());
    }

    SidebarList list{QStringLiteral("Devices"), rowOf};
    std::vector<std::string> chosen;
};

TEST_F(SidebarListTest, aRowThatGoesHandsItsSelectionToNobody) {
    click(2);
    list.setSections({{QStringLiteral("Nearby"), {"c", "a"}}});
    EXPECT_FALSE(list.currentIndex().isValid());
    EXPECT_EQ(list.selectedID(), "b");
    list.setSections({{QStringLiteral("Nearby"), {"c", "b", "a"}}});
    EXPECT_EQ(list.rows().idAt(list.currentIndex().row()), "b") << "it came back";
    list.select("c");
    EXPECT_EQ(list.rows().idAt(list.currentIndex().row()), "c");
    EXPECT_THAT(chosen, ElementsAre("b")) << "only what the user does is told";
}

TEST_F(SidebarListTest, choosesNothingByGettingTheFocus) {
    EXPECT_TRUE(list.hasFocus());
    EXPECT_EQ(list.selectedID(), "");
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_THAT(chosen, ElementsAre("a"));
}

TEST_F(SidebarListTest, goesOverTitlesByKeys) {
    list.setSections({{QStringLiteral("Tracked"), {"a"}}, {QStringLiteral("Nearby"), {"b"}}});
    click(0);
    EXPECT_TRUE(chosen.empty()) << "a title";
    click(1);
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Up);
    EXPECT_THAT(chosen, ElementsAre("a", "b", "a"));
}

TEST_F(SidebarListTest, asksForAMenuByButtonAndByKey) {
    QSignalSpy menus(&list, &SidebarList::menuRequested);
    const auto ask = [this](QContextMenuEvent::Reason reason, const QPoint& at) {
        QContextMenuEvent event(reason, at, list.viewport()->mapToGlobal(at));
        QApplication::sendEvent(list.viewport(), &event);
    };
    ask(QContextMenuEvent::Mouse, list.visualRect(list.rows().index(0)).center());
    EXPECT_EQ(menus.size(), 0) << "a title";
    ask(QContextMenuEvent::Mouse, list.visualRect(list.rows().index(3)).center());
    ASSERT_EQ(menus.size(), 1);
    EXPECT_EQ(menus[0][0].value<std::string>(), "c");
    list.select("a");
    ask(QContextMenuEvent::Keyboard, {});
    ASSERT_EQ(menus.size(), 2);
    EXPECT_EQ(menus[1][0].value<std::string>(), "a");
}

TEST_F(SidebarListTest, tellsAScreenReaderAllThatARowShows) {
    auto* accessible = QAccessible::queryAccessibleInterface(&list);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::List);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Devices"));
    ASSERT_EQ(accessible->childCount(), 4);
    EXPECT_EQ(accessible->child(1)->text(QAccessible::Name), QStringLiteral("a, Available now, Tracked"));
}

TEST(ThrottledTest, runsAtOnceThenOnceInAnInterval) {
    FakeScheduler scheduler;
    int runs = 0;
    Throttled refresh(scheduler, 250ms, [&runs] { ++runs; });

    refresh.request();
    refresh.request();
    EXPECT_EQ(runs, 0) << "at the end of the turn";
    QApplication::processEvents();
    EXPECT_EQ(runs, 1);
    for (int time = 0; time < 1000; time += 50) {
        refresh.request();
        scheduler.advance(50ms);
        QApplication::processEvents();
    }
    EXPECT_EQ(runs, 5);
    scheduler.advance(1s);
    EXPECT_EQ(runs, 5) << "nothing was asked for";
    refresh.request();
    QApplication::processEvents();
    EXPECT_EQ(runs, 6);
}

} // namespace
} // namespace nightjar
