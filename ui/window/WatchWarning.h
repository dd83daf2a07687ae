// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"

#include <QWidget>

namespace nightjar {

class ElidedLabel;
class SymbolView;

/// Tells on every section what the user believes to be watched and is not: a guard that sees nothing, alerts
/// of a watch that does not run. Empty while all is well. Main thread.
class WatchWarning final : public QWidget {
    Q_OBJECT
public:
    explicit WatchWarning(ViewContext& context, QWidget* parent = nullptr);

private:
    void refresh();

    ViewContext& m_context;
    SymbolView* m_symbol;
    ElidedLabel* m_text;
    Coalesced m_refresh;
};

} // namespace nightjar
