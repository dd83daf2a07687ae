// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MessageList.h"

#include "tests/support/ModelRig.h"
#include "tests/ui/Widgets.h"
#include "ui/map/MapTiles.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QScrollBar>

#include <gtest/gtest.h>

#include <memory>

namespace nightjar {
namespace {

class MessageListTest : public ::testing::Test {
protected:
    MessageListTest() {
        list.resize(700, 400);
        list.show();
        ui::settle();
    }
    void hear(int count) {
        for (int i = 0; i < count; ++i)
            rig.hear(testing::received("Message number " + std::to_string(++heard)));
        ui::settle();
    }
    QScrollBar& bar() { return *list.verticalScrollBar(); }

    testing::ModelRig rig;
    MapTiles tiles{MapTileSettings{}};
    ViewContext context{rig.startConnected(), rig.services(), tiles};
    MessageList list{context};
    int heard = 0;
};

TEST_F(MessageListTest, followsTheEndUnlessSomebodyReadsFurtherUp) {
    auto tester = std::make_unique<QAbstractItemModelTester>(
        list.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    hear(60);
    ui::waitUntil([this] { return bar().maximum() > 0 && bar().value() == bar().maximum(); });
    bar().setValue(100);
    hear(1);
    EXPECT_EQ(bar().value(), 100);

    // The oldest are dropped beyond the limit of the conversation.
    tester.reset();
    hear(4'930);
    tester = std::make_unique<QAbstractItemModelTester>(list.model(),
                                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
    hear(20);
    EXPECT_EQ(list.messages().rowCount(), static_cast<int>(rig.model->messages().size()));
    EXPECT_EQ(list.messages().index(list.messages().rowCount() - 1).data().toString(),
              QStringLiteral("Message number 5011"));
}

TEST_F(MessageListTest, copiesAndSpeaksWhatABubbleShows) {
    hear(2);
    const auto last = list.messages().index(1);
    EXPECT_EQ(last.data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("!0000002a · Primary, 12:00: Message number 2"));
    list.setCurrentIndex(last);
    QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Message number 2"));
}

} // namespace
} // namespace nightjar
