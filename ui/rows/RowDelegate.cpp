// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/rows/RowDelegate.h"

#include "ui/style/Fonts.h"
#include "ui/style/Symbols.h"
#include "ui/text/ShownText.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace nightjar {

namespace {

constexpr int margin = 18; ///< from the edge of the list to a row's contents
constexpr int symbolFrame = 24;
constexpr int symbolSize = 21;
constexpr int badgeSize = 15;
constexpr int badgeStep = 20;
constexpr int lineGap = 3;

const RowListModel& modelOf(const QModelIndex& index) {
    return static_cast<const RowListModel&>(*index.model());
}

/// The places of a row's contents.
struct Layout {
    Layout(const QRect& row, int badges)
        : titleFont(fontOf(TextSize::body)),
          captionFont(fontOf(TextSize::caption)),
          titleMetrics(titleFont),
          captionMetrics(captionFont),
          symbol(row.left() + margin + (symbolFrame - symbolSize) / 2, row.center().y() - symbolSize / 2,
                 symbolSize, symbolSize) {
        const int left = row.left() + margin + symbolFrame + 8;
        const int right = row.right() - margin - badges * badgeStep;
        const int height = titleMetrics.height() + lineGap + captionMetrics.height();
        const int top = row.top() + (row.height() - height) / 2;
        title = QRect(left, top, right - left, titleMetrics.height());
        caption = QRect(left, title.bottom() + 1 + lineGap, right - left, captionMetrics.height());
    }

    [[nodiscard]] QString shortTitle(const Row& row) const {
        return titleMetrics.elidedText(row.title, Qt::ElideRight, title.width());
    }
    [[nodiscard]] QString shortCaption(const Row& row) const {
        return captionMetrics.elidedText(row.caption, Qt::ElideRight, caption.width());
    }

    QFont titleFont, captionFont;
    QFontMetrics titleMetrics, captionMetrics;
    QRect symbol, title, caption;
};

QRect badgeRect(const QRect& row, int fromRight) {
    return {row.right() - margin - badgeSize - fromRight * badgeStep, row.center().y() - badgeSize / 2,
            badgeSize, badgeSize};
}

void paintTitle(QPainter& painter, const QStyleOptionViewItem& option, const QString& title) {
    QFont font = fontOf(TextSize::caption);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.setPen(Colors::of(option.palette).secondary);
    painter.drawText(option.rect.adjusted(margin, 0, -12, -5), Qt::AlignBottom | Qt::AlignLeft, title);
}

} // namespace

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    const auto& colors = Colors::of(option.palette);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (modelOf(index).isTitle(index.row())) {
        paintTitle(*painter, option, index.data().toString());
        painter->restore();
        return;
    }
    const bool isSelected = option.state & QStyle::State_Selected;
    const bool isActive = isSelected && (option.state & QStyle::State_Active) && option.widget &&
                          option.widget->hasFocus() &&
                          option.widget->window()->testAttribute(Qt::WA_KeyboardFocusChange);
    if (isSelected || (option.state & QStyle::State_MouseOver)) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(isActive ? colors.accent : isSelected ? colors.selected : colors.hover);
        painter->drawRoundedRect(QRectF(option.rect).adjusted(8, 1, -8, -1), 7, 7);
    }

    const Row row = modelOf(index).rowAt(index.row());
    const auto badges = static_cast<int>(row.badges.size());
    const Layout layout(option.rect, badges);
    const auto color = [&](Tint tint) { return isActive ? colors.onAccent : colors.tint(tint); };
    Symbols::paint(*painter, layout.symbol, row.symbol, color(row.tint));
    for (int place = 0; place < badges; ++place) {
        const auto& badge = row.badges[static_cast<std::size_t>(badges - 1 - place)];
        Symbols::paint(*painter, badgeRect(option.rect, place), badge.symbol, color(badge.tint));
    }
    painter->setFont(layout.titleFont);
    painter->setPen(color(Tint::text));
    painter->drawText(layout.title, Qt::AlignLeft | Qt::AlignVCenter, layout.shortTitle(row));
    painter->setFont(layout.captionFont);
    painter->setPen(isActive ? withAlpha(colors.onAccent, 215) : colors.secondary);
    painter->drawText(layout.caption, Qt::AlignLeft | Qt::AlignVCenter, layout.shortCaption(row));
    painter->restore();
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const int caption = QFontMetrics(fontOf(TextSize::caption)).height();
    if (modelOf(index).isTitle(index.row()))
        return {100, caption + (index.row() == 0 ? 13 : 20)};
    return {100, QFontMetrics(fontOf(TextSize::body)).height() + caption + lineGap + 14};
}

bool RowDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid() || modelOf(index).isTitle(index.row()))
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const Row row = modelOf(index).rowAt(index.row());
    const auto badges = static_cast<int>(row.badges.size());
    for (int place = 0; place < badges; ++place) {
        const QRect around = badgeRect(option.rect, place).adjusted(-3, -6, 3, 6);
        if (!around.contains(event->pos()))
            continue;
        const auto& badge = row.badges[static_cast<std::size_t>(badges - 1 - place)];
        QToolTip::showText(event->globalPos(), plainToolTip(badge.help), view->viewport(), around);
        return true;
    }
    const Layout layout(option.rect, badges);
    QStringList cut;
    if (layout.shortTitle(row) != row.title)
        cut << row.title;
    if (layout.shortCaption(row) != row.caption)
        cut << row.caption;
    QToolTip::showText(event->globalPos(), plainToolTip(cut.join(QStringLiteral(" · "))), view->viewport(),
                       option.rect);
    return true;
}

} // namespace nightjar
