// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QToolButton>

namespace nightjar {

/// A button that floats over the map: a symbol, or words. Neighbours in one panel leave out the corners
/// between them.
class MapButton : public QToolButton {
    Q_OBJECT

public:
    enum class Corners { all, top, bottom };

    MapButton(const QString& symbol, const QString& name, QWidget* parent, Corners corners = Corners::all);
    /// With words only.
    MapButton(const QString& text, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbol;
    Corners m_corners = Corners::all;
};

} // namespace nightjar
