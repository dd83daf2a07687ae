// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"

#include <QWidget>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

class QComboBox;
class QHBoxLayout;
class QLineEdit;
class QStackedWidget;

namespace nightjar {

class MessageList;

/// The conversation with the mesh: whom to write to and on which channel, what was written, and a field.
class MessagesView final : public QWidget {
    Q_OBJECT
public:
    explicit MessagesView(ViewContext& context, QWidget* parent = nullptr);
    void takeFocus();
    /// Sends what is typed, unless it is empty.
    void sendDraft();

private:
    using Recipient = std::optional<std::uint32_t>;

    void buildHead();
    void buildFoot();
    void addPicker(QHBoxLayout& head, const QString& label, QComboBox& picker);
    void refresh();
    void refreshRecipients();
    void refreshChannels();

    ViewContext& m_context;
    QComboBox* m_recipient;
    QComboBox* m_channel;
    QStackedWidget* m_pages;
    MessageList* m_list;
    QLineEdit* m_field;
    std::vector<std::pair<QString, Recipient>> m_recipients;
    std::vector<std::pair<QString, std::uint32_t>> m_channels;
    Coalesced m_refresh;
};

} // namespace nightjar
