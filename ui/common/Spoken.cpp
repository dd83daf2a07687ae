// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/Spoken.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace nightjar {

namespace {

constexpr char spokenProperty[] = "spokenAs";

QAccessible::Role roleOf(Spoken role) {
    switch (role) {
    case Spoken::text:
        return QAccessible::StaticText;
    case Spoken::heading:
        return QAccessible::Heading;
    case Spoken::banner:
    case Spoken::alertWindow:
        return QAccessible::AlertMessage;
    case Spoken::group:
        return QAccessible::Grouping;
    case Spoken::toolBar:
        return QAccessible::ToolBar;
    case Spoken::window:
        return QAccessible::Window;
    }
    return QAccessible::Client;
}

class SpokenWhole final : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        // A tool tip, which would be taken for a description, repeats the text and is marked up.
        return kind == QAccessible::Description ? widget()->accessibleDescription()
                                                : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const QVariant kept = widget ? widget->property(spokenProperty) : QVariant();
    if (!kept.isValid())
        return nullptr;
    const auto spoken = static_cast<Spoken>(kept.toInt());
    if (spoken <= Spoken::banner)
        return new SpokenWhole(widget, roleOf(spoken));
    return new QAccessibleWidget(widget, roleOf(spoken));
}

} // namespace

void speakAs(QWidget& widget, Spoken role) {
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    (void)isInstalled;
    widget.setProperty(spokenProperty, static_cast<int>(role));
}

} // namespace nightjar
