// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/ErrorAlerts.h"

#include "tests/support/ModelRig.h"

#include <QApplication>
#include <QTest>

#include <optional>

namespace nightjar {
namespace {

class ErrorAlertsTest : public ::testing::Test, public testing::ModelRig {
protected:
    ErrorAlertsTest() {
        start();
        alerts.emplace(*model, QList<QWidget*>{&*mainWindow, &settings});
    }
    static void settle() {
        QApplication::processEvents();
        QApplication::processEvents();
    }
    static void activate(QWidget& window) {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    AlertSheet* sheet() {
        settle();
        auto* shown = alerts->shown();
        return shown && shown->isVisible() ? shown : nullptr;
    }
    std::string title() { return sheet() ? sheet()->windowTitle().toStdString() : "none"; }
    void pressOK() {
        ASSERT_NE(sheet(), nullptr);
        QTest::mouseClick(sheet()->button(0), Qt::LeftButton);
    }

    std::optional<QWidget> mainWindow{std::in_place};
    QWidget settings;
    std::optional<ErrorAlerts> alerts;
};

TEST_F(ErrorAlertsTest, eachControllersErrorIsShownUntilItHasBeenSeen) {
    activate(*mainWindow);
    EXPECT_EQ(title(), "none");
    model->localNetwork().setErrorMessage("No network.");
    EXPECT_EQ(title(), "Local Network");
    model->setErrorMessage("No radio.");
    model->bluetoothTrackers().setErrorMessage("No Bluetooth.");
    EXPECT_EQ(title(), "Local Network") << "the others wait";
    EXPECT_EQ(sheet()->text(), QStringLiteral("No network."));
    EXPECT_EQ(sheet()->button(0)->text(), QStringLiteral("OK"));

    pressOK();
    EXPECT_EQ(model->localNetwork().errorMessage(), std::nullopt);
    EXPECT_EQ(title(), "Halvard Nightjar");
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(title(), "Bluetooth");
    sheet()->close();
    EXPECT_EQ(model->bluetoothTrackers().errorMessage(), std::nullopt);
    EXPECT_EQ(title(), "none");
}

TEST_F(ErrorAlertsTest, followsTheErrorThatItShows) {
    activate(*mainWindow);
    model->setErrorMessage("First.");
    const auto* first = sheet();
    model->setErrorMessage("Second.");
    EXPECT_EQ(sheet(), first);
    EXPECT_EQ(first->text(), QStringLiteral("Second."));
    model->setErrorMessage({});
    EXPECT_EQ(sheet(), nullptr) << "cleared by somebody else";
}

TEST_F(ErrorAlertsTest, anErrorThatCameJustBeforeTheClickIsNotLost) {
    activate(*mainWindow);
    model->setErrorMessage("First.");
    auto* shown = sheet();
    model->setErrorMessage("Second.");
    QTest::mouseClick(shown->button(0), Qt::LeftButton); // of the first: the second is not on screen yet
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->text(), QStringLiteral("Second."));
    EXPECT_EQ(model->errorMessage(), "Second.");
}

TEST_F(ErrorAlertsTest, oneThatComplainsWithoutEndDoesNotHideTheOthers) {
    activate(*mainWindow);
    model->setErrorMessage("Again.");
    ASSERT_EQ(title(), "Halvard Nightjar");
    model->localNetwork().setErrorMessage("No network.");
    QObject::connect(&*model, &NightjarModel::errorMessageChanged, &*mainWindow, [this] {
        if (!model->errorMessage())
            model->setErrorMessage("Again.");
    });
    pressOK();
    EXPECT_EQ(title(), "Local Network");
    pressOK();
    EXPECT_EQ(title(), "Halvard Nightjar");
}

TEST_F(ErrorAlertsTest, standsOverTheWindowInUseAndMovesWhenThatGoes) {
    activate(*mainWindow);
    activate(settings);
    model->bluetoothTrackers().setErrorMessage("No Bluetooth.");
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->parentWidget(), &settings);
    EXPECT_EQ(QApplication::topLevelWidgets().count(sheet()), 1);
    settings.hide();
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->parentWidget(), &*mainWindow);
    mainWindow->hide();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(model->bluetoothTrackers().errorMessage(), "No Bluetooth.") << "nobody has seen it off";
    mainWindow->show();
    EXPECT_EQ(title(), "Bluetooth");
    mainWindow.reset();
    EXPECT_EQ(sheet(), nullptr);
    settings.show();
    EXPECT_EQ(title(), "Bluetooth");
}

TEST_F(ErrorAlertsTest, waitsForAWindowAndTakesTheFocusFromNobody) {
    model->setErrorMessage("No radio.");
    EXPECT_EQ(sheet(), nullptr);
    ASSERT_EQ(QApplication::activeWindow(), nullptr);
    mainWindow->setAttribute(Qt::WA_ShowWithoutActivating);
    mainWindow->show();
    ASSERT_NE(sheet(), nullptr);
    EXPECT_TRUE(sheet()->testAttribute(Qt::WA_ShowWithoutActivating));
}

TEST_F(ErrorAlertsTest, aNovelFitsOnTheScreen) {
    activate(*mainWindow);
    for (const auto& novel :
         {std::string(10'000, 'W'), std::string(10'000, '\n'), std::string("<b>&amp;</b>"),
          std::string("a\0b", 3), std::string("\xe2\x80\xae evil \xff")}) {
        model->setErrorMessage(novel);
        ASSERT_NE(sheet(), nullptr);
        EXPECT_LT(sheet()->height(), 700);
        EXPECT_LT(sheet()->width(), 500);
    }
    EXPECT_EQ(alertText("<b>&amp;</b>"), QStringLiteral("<b>&amp;</b>"));
    EXPECT_EQ(alertText("one\ntwo"), QStringLiteral("one\ntwo"));
    EXPECT_TRUE(alertText(std::string(10'000, 'W')).endsWith(u'…'));
}

} // namespace
} // namespace nightjar
