// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>

#include <string>

namespace nightjar {

/// A name that is edited in place: Enter or leaving the field takes it, Escape restores the old one. What is
/// being typed is never overwritten.
class NameField final : public QLineEdit {
    Q_OBJECT
public:
    explicit NameField(const QString& accessibleName, QWidget* parent = nullptr);
    /// Of the record whose name is shown; tells nobody. With another record what was typed is given up.
    void show(const std::string& id, const QString& name);
    using QLineEdit::show;

Q_SIGNALS:
    /// The user gave the record another name. Never a blank one.
    void renamed(const std::string& id, const QString& name);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void take();
    void restore();

    std::string m_id;
    QString m_name;
};

} // namespace nightjar
