// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ScanningSection.h"
#include "ui/common/Selection.h"
#include "ui/common/ViewContext.h"

#include <QPointer>
#include <QWidget>

#include <string>
#include <vector>

namespace nightjar {

class LocalNetworkSidebar;

/// The local network in the main window. Browsing runs while the section is on screen.
class LocalNetworkSection final : public ScanningSection {
    Q_OBJECT
public:
    explicit LocalNetworkSection(ViewContext& context);
    /// Its widgets go with it, those that are left.
    ~LocalNetworkSection() override;

    [[nodiscard]] QWidget* sidebar() override;
    [[nodiscard]] QWidget* content() override;
    [[nodiscard]] QWidget* inspector() override;
    void activate() override;
    void deactivate() override;
    void takeFocus() override;
    [[nodiscard]] QString scanTitle() const override;
    void scanOrStop() override;

    [[nodiscard]] Selection& selection() { return m_selection; }

private:
    void devicesChanged();
    void selectIfNeeded();

    ViewContext& m_context;
    Selection m_selection;
    QPointer<LocalNetworkSidebar> m_sidebar;
    QPointer<QWidget> m_content;
    QPointer<QWidget> m_inspector;
    Coalesced m_devicesChanged;
    std::vector<std::string> m_knownIDs;
    bool m_isActive = false;
};

} // namespace nightjar
