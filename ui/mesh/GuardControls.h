// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshNode.h"
#include "ui/common/ViewContext.h"

#include <QString>
#include <QWidget>

class QComboBox;
class QPushButton;

namespace nightjar {

class Card;
class MetricRow;
class SymbolView;
class TextLabel;

/// What an inspector tells of a guard, without a widget.
struct GuardState {
    QString distance;      ///< from the marked position
    bool isMarked = false; ///< a position is marked
    bool isInside = false; ///< the latest position lies in the marked area
    bool canMark = false;  ///< there is a position to mark

    [[nodiscard]] static GuardState of(const NightjarModel& model, const MeshNode& node);
};

/// Everything about the guard of the guarded node.
class GuardControls final : public QWidget {
    Q_OBJECT
public:
    explicit GuardControls(ViewContext& context, QWidget* parent = nullptr);
    void refresh(const MeshNode& node);
    /// Its first control.
    [[nodiscard]] QWidget* profile() const;

private:
    void addProfile(Card& card);
    void addAlarm(Card& card);
    void addButtons();

    ViewContext& m_context;
    QComboBox* m_profile;
    MetricRow* m_radius = nullptr;
    MetricRow* m_distance = nullptr;
    MetricRow* m_status = nullptr;
    QWidget* m_alarm = nullptr;
    SymbolView* m_alarmSymbol = nullptr;
    TextLabel* m_alarmText = nullptr;
    TextLabel* m_warning = nullptr;
    QPushButton* m_mark = nullptr;
    QPushButton* m_clear = nullptr;
};

} // namespace nightjar
