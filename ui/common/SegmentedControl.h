// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <QVariantAnimation>
#include <QWidget>

class QRadioButton;

namespace nightjar {

/// One choice of a few, side by side. The segments are radio buttons: arrow keys, exclusivity and roles for
/// screen readers come with them.
class SegmentedControl final : public QWidget {
    Q_OBJECT
public:
    SegmentedControl(const QString& accessibleName, const QStringList& titles, int width,
                     QWidget* parent = nullptr);
    [[nodiscard]] int current() const { return m_current; }
    /// Tells nobody.
    void setCurrent(int segment);
    [[nodiscard]] QRadioButton* segment(int place) const { return m_segments[place]; }

Q_SIGNALS:
    /// The user chose another segment.
    void chosen(int segment);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void keepOneTabStop();

    QList<QRadioButton*> m_segments;
    int m_current = 0;
    QVariantAnimation m_slide;
    qreal m_position = 0; ///< of the highlight, in segments
};

} // namespace nightjar
