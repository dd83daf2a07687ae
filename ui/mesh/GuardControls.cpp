// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/GuardControls.h"

#include "core/mesh/MeshMath.h"
#include "ui/common/Buttons.h"
#include "ui/common/Card.h"
#include "ui/common/FocusHeirs.h"
#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"
#include "ui/common/WheelGuard.h"
#include "ui/mesh/GuardWarning.h"
#include "ui/mesh/MeshRows.h"
#include "ui/text/ShownText.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nightjar {

GuardState GuardState::of(const NightjarModel& model, const MeshNode& node) {
    GuardState state;
    state.canMark = node.position.has_value();
    state.isMarked = model.parkedPosition().has_value();
    if (!state.canMark || !state.isMarked) {
        state.distance = QStringLiteral("Not reported");
        return state;
    }
    const double metres = MeshMath::distanceMeters(*model.parkedPosition(), *node.position);
    state.distance = MeshRows::metres(metres);
    state.isInside = metres <= model.parkingRadius();
    return state;
}

GuardControls::GuardControls(ViewContext& context, QWidget* parent)
    : QWidget(parent), m_context(context), m_profile(new QComboBox) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(16);
    auto* card = new Card(QStringLiteral("Guarding"));
    layout->addWidget(card);
    addProfile(*card);
    m_radius = card->addMetric(QStringLiteral("Alert radius"));
    m_distance = card->addMetric(QStringLiteral("Distance"));
    m_status = card->addMetric(QStringLiteral("Status"));
    addAlarm(*card);
    m_warning = card->addNote({});
    m_warning->setTint(Tint::orange);
    addButtons();
}

QWidget* GuardControls::profile() const {
    return m_profile;
}

void GuardControls::addProfile(Card& card) {
    for (const auto profile : guardProfiles) {
        const auto name = title(profile);
        m_profile->addItem(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
    }
    m_profile->setAccessibleName(QStringLiteral("Profile"));
    guardFromWheel(m_profile);
    connect(m_profile, &QComboBox::activated, this, [this](int place) {
        m_context.model().setGuardProfile(guardProfiles[static_cast<std::size_t>(place)]);
    });
    card.addControl(QStringLiteral("Profile"), m_profile);
}

void GuardControls::addAlarm(Card& card) {
    auto* verdict = new QWidget;
    auto* layout = new QHBoxLayout(verdict);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_alarmSymbol = new SymbolView({}, 16, Tint::green));
    layout->addWidget(m_alarmText = new TextLabel({}));
    m_alarm = card.addControl(QStringLiteral("Alarm"), verdict);
    speakAs(*m_alarm, Spoken::text);
}

void GuardControls::addButtons() {
    auto* column = static_cast<QVBoxLayout*>(layout());
    m_mark = makeButton(QStringLiteral("Mark Current Position"), ButtonLook::prominent);
    connect(m_mark, &QPushButton::clicked, this, [this] { m_context.model().markGuardedPosition(); });
    column->addWidget(m_mark);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    m_clear = makeButton(QStringLiteral("Clear"));
    connect(m_clear, &QPushButton::clicked, this, [this] { m_context.model().clearParking(); });
    auto* stop = makeButton(QStringLiteral("Stop Guarding"));
    connect(stop, &QPushButton::clicked, this, [this] { m_context.model().clearGuardedDevice(); });
    row->addWidget(m_clear, 1);
    row->addWidget(stop, 1);
    column->addLayout(row);
}

void GuardControls::refresh(const MeshNode& node) {
    const auto& model = m_context.model();
    const auto state = GuardState::of(model, node);
    const auto warning = GuardWarning::of(model, m_context.now());
    m_profile->setCurrentIndex(static_cast<int>(model.guardProfile()));
    m_radius->setValue(MeshRows::metres(model.parkingRadius()));
    m_distance->setValue(state.distance);
    m_status->setValue(shownLine(model.parkingStatus()));

    m_alarm->setVisible(state.isMarked && state.canMark);
    // Green would promise more than is known.
    const Tint tint = !state.isInside ? Tint::orange : warning ? Tint::secondary : Tint::green;
    m_alarmSymbol->show(state.isInside ? QStringLiteral("checkmark.shield.fill")
                                       : QStringLiteral("exclamationmark.triangle.fill"),
                        tint);
    m_alarmText->setText(state.isInside ? QStringLiteral("Inside marked area")
                                        : QStringLiteral("Outside marked area"));
    m_alarmText->setTint(tint);
    m_alarm->setAccessibleName(QStringLiteral("Alarm: ") + m_alarmText->text());
    m_warning->setText(warning ? warning->text : QString());
    m_warning->setVisible(warning.has_value());

    const FocusHeirs heirs(*this, {m_mark, m_profile});
    m_mark->setText(state.isMarked ? QStringLiteral("Update Marked Position")
                                   : QStringLiteral("Mark Current Position"));
    m_mark->setAccessibleName(m_mark->text());
    m_mark->setEnabled(state.canMark);
    m_clear->setEnabled(state.isMarked);
}

} // namespace nightjar
