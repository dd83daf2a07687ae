// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/SettingsPage.h"

#include "ui/common/Card.h"
#include "ui/common/InspectorPage.h"
#include "ui/common/TextLabel.h"
#include "ui/style/Colors.h"

#include <QHBoxLayout>
#include <QPainter>

namespace nightjar {

namespace {

class Hairline final : public QWidget {
public:
    Hairline() { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Colors::of(this).separator); }
};

} // namespace

InspectorPage* makeSettingsPage() {
    auto* page = new InspectorPage;
    page->header().hide();
    return page;
}

QWidget* makeHairline() {
    return new Hairline;
}

TextLabel* addTextRow(Card& card, const QString& text) {
    auto* label = new TextLabel(text);
    label->setWordWrap(true);
    label->setContentsMargins(12, 7, 12, 7);
    card.addRow(label);
    return label;
}

QWidget* addButtonRow(Card& card, const QList<QWidget*>& buttons) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(12, 7, 12, 7);
    layout->setSpacing(8);
    for (QWidget* button : buttons)
        layout->addWidget(button);
    layout->addStretch();
    card.addRow(row);
    return row;
}

void putInTabOrder(const QList<QWidget*>& widgets) {
    for (qsizetype place = 1; place < widgets.size(); ++place)
        QWidget::setTabOrder(widgets[place - 1], widgets[place]);
}

} // namespace nightjar
