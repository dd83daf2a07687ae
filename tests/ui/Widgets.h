// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// A window as its user and a screen reader find it.
namespace nightjar::ui {

inline void settle() {
    for (int turn = 0; turn < 5; ++turn)
        QApplication::processEvents();
}

template <class Condition>
void waitUntil(Condition condition) {
    EXPECT_TRUE(QTest::qWaitFor(condition, 5000));
}

/// The control on screen with this name; null when there is none.
template <class Widget>
Widget* named(const QWidget& root, const char* name) {
    for (auto* widget : root.findChildren<Widget*>()) {
        if (widget->isVisible() && widget->accessibleName() == QLatin1String(name))
            return widget;
    }
    return nullptr;
}

inline void click(const QWidget& root, const char* name) {
    auto* button = named<QAbstractButton>(root, name);
    ASSERT_TRUE(button) << name;
    ASSERT_TRUE(button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
    settle();
}

inline void choose(QComboBox& picker, const char* entry) {
    const int place = picker.findText(QLatin1String(entry));
    ASSERT_GE(place, 0) << entry;
    picker.setCurrentIndex(place);
    Q_EMIT picker.activated(place);
    settle();
}

/// Whether a text stands on screen, by the name or text that a screen reader finds.
inline bool shows(const QWidget& root, const QString& text) {
    for (const auto* widget : root.findChildren<QWidget*>()) {
        if (!widget->isVisible())
            continue;
        const auto* label = qobject_cast<const QLabel*>(widget);
        if ((label && label->text().remove(QChar(0x200b)) == text) || widget->accessibleName() == text)
            return true;
    }
    return false;
}
inline bool shows(const QWidget& root, const char* text) {
    return shows(root, QString::fromUtf8(text));
}

/// The controls on screen that a screen reader has no name for.
inline std::vector<std::string> unnamedControls(const QWidget& root) {
    std::vector<std::string> unnamed;
    for (auto* widget : root.findChildren<QWidget*>()) {
        const bool isControl = qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
                               qobject_cast<QLineEdit*>(widget) || qobject_cast<QAbstractSlider*>(widget) ||
                               qobject_cast<QAbstractSpinBox*>(widget);
        if (!isControl || !widget->isVisible() || widget->focusPolicy() == Qt::NoFocus)
            continue;
        if (qobject_cast<QAbstractSpinBox*>(widget->parentWidget()))
            continue;
        auto* accessible = QAccessible::queryAccessibleInterface(widget);
        if (!accessible || accessible->text(QAccessible::Name).isEmpty())
            unnamed.push_back(widget->metaObject()->className());
    }
    return unnamed;
}

} // namespace nightjar::ui
