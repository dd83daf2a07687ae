// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MessageList.h"

#include "ui/mesh/MessageBubble.h"
#include "ui/style/Colors.h"
#include "ui/style/Fonts.h"
#include "ui/text/ShownText.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace nightjar {

namespace {

constexpr int margin = 20;
constexpr int padding = 12;
constexpr int freeOpposite = 80;
constexpr int widestText = 520;
constexpr std::size_t mostTexts = 20'000;

/// The places of a bubble's contents within a row of the given width.
struct BubbleLayout {
    BubbleLayout(const MessageBubble& bubble, QSize textSize, int rowWidth)
        : caption(fontOf(TextSize::caption)) {
        const QFontMetrics metrics(caption);
        const int timeWidth = metrics.horizontalAdvance(bubble.time) + 1;
        const int footWidth = metrics.horizontalAdvance(bubble.caption()) + 16 + timeWidth;
        const int width =
            std::clamp(footWidth, std::min(textSize.width(), widthFor(rowWidth)), widthFor(rowWidth));
        const int height = textSize.height() + 3 + metrics.height();
        const int left = bubble.isOutgoing ? rowWidth - margin - width - 2 * padding : margin;
        ground = QRect(left, 4, width + 2 * padding, height + 16);
        text = QRect(left + padding, ground.top() + 8, width, textSize.height());
        const int foot = text.bottom() + 4;
        time = QRect(text.right() + 1 - timeWidth, foot, timeWidth, metrics.height());
        sender = QRect(text.left(), foot, width - timeWidth - 8, metrics.height());
    }

    [[nodiscard]] static int widthFor(int rowWidth) {
        return std::clamp(rowWidth - 2 * margin - freeOpposite - 2 * padding, 60, widestText);
    }
    [[nodiscard]] static int heightFor(QSize textSize) {
        return textSize.height() + 3 + QFontMetrics(fontOf(TextSize::caption)).height() + 16 + 8;
    }

    QFont caption;
    QRect ground, text, time, sender;
};

constexpr int textFlags = Qt::TextWordWrap | Qt::AlignLeft; // of a text made breakable

QSize measured(const QString& text, int width) {
    return QFontMetrics(fontOf(TextSize::body))
               .boundingRect(0, 0, width, 1'000'000, textFlags, breakable(text))
               .size() +
           QSize(1, 0);
}

} // namespace

void BubbleDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    const auto* message = m_messages.messageAt(index.row());
    if (!message)
        return;
    const auto bubble = MessageBubble::of(*message, m_context);
    const auto& colors = Colors::of(option.palette);
    const BubbleLayout layout(bubble, measured(bubble.text, BubbleLayout::widthFor(option.rect.width())),
                              option.rect.width());
    painter->save();
    painter->translate(option.rect.topLeft());
    painter->setRenderHint(QPainter::Antialiasing);
    const bool isCurrent = (option.state & QStyle::State_HasFocus) && option.widget &&
                           option.widget->window()->testAttribute(Qt::WA_KeyboardFocusChange);
    painter->setPen(isCurrent ? QPen(withAlpha(colors.accent, 150), 3) : QPen(Qt::NoPen));
    painter->setBrush(bubble.isOutgoing ? colors.accent : colors.bubble);
    painter->drawRoundedRect(layout.ground, 14, 14);
    painter->setPen(bubble.isOutgoing ? colors.onAccent : colors.text);
    painter->setFont(fontOf(TextSize::body));
    painter->drawText(layout.text, textFlags, breakable(bubble.text));
    painter->setPen(bubble.isOutgoing ? withAlpha(colors.onAccent, 215) : colors.secondary);
    painter->setFont(layout.caption);
    painter->drawText(
        layout.sender, Qt::AlignLeft | Qt::AlignVCenter,
        QFontMetrics(layout.caption).elidedText(bubble.caption(), Qt::ElideRight, layout.sender.width()));
    painter->drawText(layout.time, Qt::AlignRight | Qt::AlignVCenter, bubble.time);
    painter->restore();
}

QSize BubbleDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const auto* view = qobject_cast<const QListView*>(option.widget);
    const auto* message = m_messages.messageAt(index.row());
    if (!view || !message)
        return {};
    const int rowWidth = view->viewport()->width();
    const int width = BubbleLayout::widthFor(rowWidth);
    // Most windows are wide enough for the widest text, so that resizing measures nothing again.
    if (m_texts.size() > mostTexts)
        m_texts.clear();
    auto& text = m_texts[message->id];
    if (text.width != width)
        text = {width, measured(shownText(message->text), width)};
    return {rowWidth, BubbleLayout::heightFor(text.size)};
}

MessageList::MessageList(ViewContext& context, QWidget* parent) : QListView(parent), m_messages(context) {
    setAccessibleName(QStringLiteral("Messages"));
    setModel(&m_messages);
    setItemDelegate(new BubbleDelegate(m_messages, context, this));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setResizeMode(QListView::Adjust);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalScrollBar()->setSingleStep(18);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    connect(&m_messages, &QAbstractItemModel::rowsAboutToBeInserted, this,
            [this] { m_followsEnd = isAtEnd(); });
    connect(
        &m_messages, &QAbstractItemModel::rowsInserted, this,
        [this](const QModelIndex&, int, int last) {
            const auto* message = m_messages.messageAt(last);
            if (m_followsEnd || (message && message->isOutgoing))
                scrollToBottom();
        },
        Qt::QueuedConnection);
    connect(&m_messages, &QAbstractItemModel::modelReset, this, &QListView::scrollToBottom,
            Qt::QueuedConnection);
    scrollToBottom();
}

bool MessageList::isAtEnd() const {
    return verticalScrollBar()->value() >= verticalScrollBar()->maximum() - 4;
}

void MessageList::resizeEvent(QResizeEvent* event) {
    const bool followed = isAtEnd();
    QListView::resizeEvent(event);
    if (followed)
        scrollToBottom();
}

void MessageList::copy(const QModelIndex& index) const {
    if (const auto* message = m_messages.messageAt(index.row()))
        QApplication::clipboard()->setText(shownText(message->text));
}

void MessageList::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QPersistentModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid())
        return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Copy"), this, [this, index] { copy(index); });
    menu->popup(byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

void MessageList::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && currentIndex().isValid())
        copy(currentIndex());
    else
        QListView::keyPressEvent(event);
}

} // namespace nightjar
