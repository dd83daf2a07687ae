// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"

#include <QWidget>

class QSlider;

namespace nightjar {

class Card;
class TextLabel;

/// How far the guarded device may move, where alerts go, and where maps come from.
class GeneralTab final : public QWidget {
    Q_OBJECT
public:
    explicit GeneralTab(ViewContext& context, QWidget* parent = nullptr);

private:
    void addRadius(Card& card);
    void refresh();
    NightjarModel& m_model;
    Coalesced m_refresh;
    QSlider* m_radius;
    TextLabel* m_metres;
};

} // namespace nightjar
