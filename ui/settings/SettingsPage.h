// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

class QWidget;

namespace nightjar {

class Card;
class InspectorPage;
class TextLabel;

/// A page of cards without a header.
[[nodiscard]] InspectorPage* makeSettingsPage();
/// Where a page goes on behind what stays in place.
[[nodiscard]] QWidget* makeHairline();
/// Text as wide as the card. The card owns what is added.
TextLabel* addTextRow(Card& card, const QString& text = {});
/// Buttons beginning at the left. Returns the row.
QWidget* addButtonRow(Card& card, const QList<QWidget*>& buttons);
/// The keyboard reaches the widgets in this order.
void putInTabOrder(const QList<QWidget*>& widgets);

} // namespace nightjar
