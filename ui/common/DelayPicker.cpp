// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/DelayPicker.h"

#include "ui/text/DurationText.h"

#include <QAbstractItemView>
#include <QWheelEvent>

namespace nightjar {

DelayPicker::DelayPicker(const QString& accessibleName, const std::vector<DelayChoice>& choices,
                         QWidget* parent)
    : QComboBox(parent) {
    setAccessibleName(accessibleName);
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (const auto& choice : choices) {
        if (choice.label.isEmpty())
            insertSeparator(count());
        else
            addItem(choice.label, choice.seconds);
    }
    connect(this, &QComboBox::activated, this, [this](int place) {
        if (const QVariant seconds = itemData(place); seconds.isValid())
            Q_EMIT chosen(seconds.toDouble());
    });
}

void DelayPicker::show(double seconds) {
    if (view()->isVisible())
        return;
    if (const int place = currentIndex(); place >= 0 && itemData(place).toDouble() == seconds)
        return;
    if (m_extra != seconds)
        dropExtra();
    int place = placeOf(seconds);
    if (place < 0) {
        m_extra = seconds;
        place = 0;
        while (place < count() && (!itemData(place).isValid() || itemData(place).toDouble() < seconds))
            ++place;
        insertItem(place, durationText(seconds), seconds);
    }
    setCurrentIndex(place);
}

int DelayPicker::placeOf(double seconds) const {
    for (int place = 0; place < count(); ++place) {
        if (const QVariant choice = itemData(place); choice.isValid() && choice.toDouble() == seconds)
            return place;
    }
    return -1;
}

void DelayPicker::dropExtra() {
    if (m_extra < 0)
        return;
    removeItem(placeOf(m_extra));
    m_extra = -1;
}

void DelayPicker::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace nightjar
