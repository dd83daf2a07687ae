// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MessageBubble.h"
#include "ui/mesh/MessageList.h"

#include <algorithm>

namespace nightjar {

MessageListModel::MessageListModel(ViewContext& context, QObject* parent)
    : QAbstractListModel(parent), m_context(context), m_refreshNames([this] { refreshNames(); }) {
    using M = NightjarModel;
    auto& model = context.model();
    connect(&model, &M::messagesChanged, this, &MessageListModel::takeOver);
    for (const auto signal : {&M::nodesChanged, &M::channelsChanged})
        connect(&model, signal, &m_refreshNames, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, &m_refreshNames, &Coalesced::request);
    takeOver();
}

const MeshMessage* MessageListModel::messageAt(int place) const {
    const auto& messages = m_context.model().messages();
    return place >= 0 && place < static_cast<int>(messages.size())
               ? &messages[static_cast<std::size_t>(place)]
               : nullptr;
}

int MessageListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_ids.size());
}

QVariant MessageListModel::data(const QModelIndex& index, int role) const {
    const auto* message = index.isValid() ? messageAt(index.row()) : nullptr;
    if (!message)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return MessageBubble::of(*message, m_context).text;
    case Qt::AccessibleTextRole:
        return MessageBubble::of(*message, m_context).spoken();
    default:
        return {};
    }
}

/// Messages are added at the end, and the oldest are dropped where there are too many; anything else is a new
/// list.
void MessageListModel::takeOver() {
    const auto& messages = m_context.model().messages();
    const auto dropped = messages.empty() ? m_ids.end() : std::ranges::find(m_ids, messages.front().id);
    const auto kept = m_ids.end() - dropped;
    const bool isContinued = kept > 0 && kept <= static_cast<std::ptrdiff_t>(messages.size()) &&
                             messages[static_cast<std::size_t>(kept) - 1].id == m_ids.back();
    if (!isContinued) {
        beginResetModel();
        m_ids.clear();
        for (const auto& message : messages)
            m_ids.push_back(message.id);
        endResetModel();
        return;
    }
    if (const auto count = dropped - m_ids.begin(); count > 0) {
        beginRemoveRows({}, 0, static_cast<int>(count) - 1);
        m_ids.erase(m_ids.begin(), dropped);
        endRemoveRows();
    }
    if (m_ids.size() < messages.size()) {
        beginInsertRows({}, rowCount(), static_cast<int>(messages.size()) - 1);
        for (auto place = m_ids.size(); place < messages.size(); ++place)
            m_ids.push_back(messages[place].id);
        endInsertRows();
    }
}

void MessageListModel::refreshNames() {
    if (!m_ids.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

} // namespace nightjar
