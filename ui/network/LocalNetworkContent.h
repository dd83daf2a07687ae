// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/Selection.h"
#include "ui/common/ViewContext.h"

#include <QStackedWidget>

class QPushButton;

namespace nightjar {

class DetailView;
class SymbolLabel;
class TextLabel;
class UnavailableView;

/// Whether the chosen device of the local network is there.
class LocalNetworkContent final : public QStackedWidget {
    Q_OBJECT
public:
    LocalNetworkContent(ViewContext& context, Selection& selection, QWidget* parent = nullptr);

private:
    void refresh();
    void showNothing();
    void show(const LocalNetworkDevice& device);
    using QStackedWidget::show;

    ViewContext& m_context;
    Selection& m_selection;
    UnavailableView* m_nothing;
    DetailView* m_device;
    TextLabel* m_availability;
    TextLabel* m_services;
    TextLabel* m_note;
    QPushButton* m_track;
    SymbolLabel* m_tracked;
    Coalesced m_refresh;
};

} // namespace nightjar
