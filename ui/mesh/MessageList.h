// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"
#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"

#include <QAbstractListModel>
#include <QListView>
#include <QStyledItemDelegate>

#include <deque>
#include <unordered_map>

namespace nightjar {

/// The conversation, oldest first. New messages come as insertions, so that a reader keeps the place.
class MessageListModel final : public QAbstractListModel {
    Q_OBJECT
public:
    explicit MessageListModel(ViewContext& context, QObject* parent = nullptr);

    [[nodiscard]] const MeshMessage* messageAt(int place) const;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    void takeOver();
    void refreshNames();

    ViewContext& m_context;
    std::deque<Uuid> m_ids;
    Coalesced m_refreshNames;
};

/// Paints messages as bubbles: own ones at the end, others at the beginning of the line.
class BubbleDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    BubbleDelegate(const MessageListModel& messages, const ViewContext& context, QObject* parent)
        : QStyledItemDelegate(parent), m_messages(messages), m_context(context) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const MessageListModel& m_messages;
    const ViewContext& m_context;
    struct Measured {
        int width = 0; ///< that the text had
        QSize size;
    };
    mutable std::unordered_map<Uuid, Measured> m_texts;
};

/// The bubbles, scrolled along with what arrives while the last one is in sight. Their text can be copied.
class MessageList final : public QListView {
    Q_OBJECT
public:
    explicit MessageList(ViewContext& context, QWidget* parent = nullptr);
    [[nodiscard]] const MessageListModel& messages() const { return m_messages; }

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void copy(const QModelIndex& index) const;
    [[nodiscard]] bool isAtEnd() const;

    MessageListModel m_messages;
    bool m_followsEnd = true;
};

} // namespace nightjar
