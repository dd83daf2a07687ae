// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/LoRaForm.h"

#include "ui/common/Card.h"
#include "ui/common/SwitchControl.h"
#include "ui/common/WheelGuard.h"

#include <QComboBox>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace nightjar {

namespace {

struct Range {
    int low;
    int high;
};
constexpr Range hops{1, 7};
constexpr Range slots{0, 255};
constexpr Range decibels{0, 30};

/// Zero is no power but the leave to choose one.
class PowerBox final : public QSpinBox {
public:
    /// Qt's own gives long texts no room.
    [[nodiscard]] QSize sizeHint() const override {
        const int added = QSpinBox::sizeHint().width() -
                          fontMetrics().horizontalAdvance(textFromValue(minimum()).left(18) + u' ');
        return {fontMetrics().horizontalAdvance(textFromValue(decibels.high)) + added,
                QSpinBox::sizeHint().height()};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] QString textFromValue(int value) const override {
        return value == 0 ? QStringLiteral("Regional default")
                          : QStringLiteral("%1 dBm (0 is regional default)").arg(value);
    }
    [[nodiscard]] int valueFromText(const QString& text) const override {
        return text.section(u' ', 0, 0).toInt(); // not a number: the default
    }
    QValidator::State validate(QString& text, int&) const override {
        bool isNumber = false;
        const int value = text.section(u' ', 0, 0).toInt(&isNumber);
        const bool isOffered = isNumber ? value >= minimum() && value <= maximum() : text == textFromValue(0);
        return isOffered ? QValidator::Acceptable : QValidator::Intermediate;
    }
};

QString textOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// What the radio holds is shown even where it would not be offered.
void showIn(QSpinBox* box, std::int64_t value, const Range& offered) {
    const QSignalBlocker silence(box);
    const auto shown = static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    box->setRange(std::min(offered.low, shown), std::max(offered.high, shown));
    box->setValue(shown);
}

template <class Choices>
QComboBox* makePicker(const QString& name, const Choices& choices) {
    auto* picker = new QComboBox;
    picker->setAccessibleName(name);
    picker->setPlaceholderText(QStringLiteral("Not set"));
    picker->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (const auto choice : choices) {
        if (const auto text = title(choice); !text.empty())
            picker->addItem(textOf(text), static_cast<int>(choice));
    }
    guardFromWheel(picker);
    return picker;
}

QSpinBox* prepared(QSpinBox* box, const QString& name) {
    box->setAccessibleName(name);
    guardFromWheel(box);
    return box;
}

} // namespace

LoRaForm::LoRaForm(QWidget* parent)
    : QWidget(parent),
      m_region(makePicker(QStringLiteral("Region"), meshtasticRegions)),
      m_preset(makePicker(QStringLiteral("Modem preset"), meshtasticModemPresets)),
      m_hops(prepared(new QSpinBox, QStringLiteral("Maximum hops"))),
      m_slot(prepared(new QSpinBox, QStringLiteral("Frequency slot"))),
      m_transmits(new SwitchControl(QStringLiteral("Transmit enabled"))),
      m_boost(new SwitchControl(QStringLiteral("RX boosted gain"))),
      m_power(prepared(new PowerBox, QStringLiteral("Transmit power"))) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* card = new Card(QStringLiteral("LoRa"));
    layout->addWidget(card);
    card->addControl(QStringLiteral("Region"), m_region);
    card->addControl(QStringLiteral("Modem preset"), m_preset);
    card->addControl(QStringLiteral("Maximum hops:"), m_hops);
    card->addControl(QStringLiteral("Frequency slot:"), m_slot);
    card->addControl(QStringLiteral("Transmit enabled"), m_transmits);
    card->addControl(QStringLiteral("RX boosted gain"), m_boost);
    card->addControl(QStringLiteral("Transmit power"), m_power);

    const auto edit = [this](auto change) {
        return [this, change](auto value) {
            change(m_values, value);
            refresh();
            Q_EMIT edited();
        };
    };
    connect(m_region, &QComboBox::activated, this, edit([this](MeshtasticRadioSettings& values, int place) {
                values.region = static_cast<MeshtasticRegion>(m_region->itemData(place).toInt());
            }));
    connect(m_preset, &QComboBox::activated, this, edit([this](MeshtasticRadioSettings& values, int place) {
                values.modemPreset = static_cast<MeshtasticModemPreset>(m_preset->itemData(place).toInt());
            }));
    connect(m_hops, &QSpinBox::valueChanged, this, edit([](MeshtasticRadioSettings& values, int count) {
                values.hopLimit = static_cast<std::uint32_t>(count);
            }));
    connect(m_slot, &QSpinBox::valueChanged, this, edit([](MeshtasticRadioSettings& values, int slot) {
                values.channelNum = static_cast<std::uint32_t>(slot);
            }));
    connect(m_transmits, &SwitchControl::clicked, this,
            edit([](MeshtasticRadioSettings& values, bool isOn) { values.txEnabled = isOn; }));
    connect(m_boost, &SwitchControl::clicked, this,
            edit([](MeshtasticRadioSettings& values, bool isOn) { values.rxBoostedGain = isOn; }));
    connect(m_power, &QSpinBox::valueChanged, this,
            edit([](MeshtasticRadioSettings& values, int power) { values.txPower = power; }));
}

void LoRaForm::show(const MeshtasticRadioSettings& values) {
    m_values = values;
    refresh();
}

QList<QWidget*> LoRaForm::controls() const {
    return {m_region, m_preset, m_hops, m_slot, m_transmits, m_boost, m_power};
}

void LoRaForm::refresh() {
    m_region->setCurrentIndex(m_region->findData(static_cast<int>(m_values.region)));
    m_preset->setCurrentIndex(m_preset->findData(static_cast<int>(m_values.modemPreset)));
    showIn(m_hops, m_values.hopLimit, hops);
    showIn(m_slot, m_values.channelNum, slots);
    m_transmits->show(m_values.txEnabled);
    m_boost->show(m_values.rxBoostedGain);
    showIn(m_power, m_values.txPower, decibels);
}

} // namespace nightjar
