// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/NameField.h"

#include <QKeyEvent>

#include <utility>

namespace nightjar {

namespace {

constexpr int mostCharacters = 500;

} // namespace

NameField::NameField(const QString& accessibleName, QWidget* parent) : QLineEdit(parent) {
    setAccessibleName(accessibleName);
    setMaxLength(mostCharacters);
    setMinimumWidth(150);
    setTextMargins(5, 0, 5, 0);
    connect(this, &QLineEdit::editingFinished, this, &NameField::take);
}

void NameField::show(const std::string& id, const QString& name) {
    const bool isSameRecord = id == m_id;
    m_id = id;
    m_name = name;
    if (isSameRecord && isModified())
        return;
    if (text() != name)
        restore();
    setModified(false);
}

void NameField::take() {
    const QString typed = text().trimmed();
    if (!isModified() || typed.isEmpty() || typed == m_name) {
        restore();
        return;
    }
    setModified(false);
    m_name = typed;
    Q_EMIT renamed(m_id, typed);
}

void NameField::restore() {
    setText(m_name);
    setCursorPosition(0);
}

void NameField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && isModified()) {
        restore();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace nightjar
