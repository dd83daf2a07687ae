// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Section.h"

#include <QString>

namespace nightjar {

/// A section whose watch the user starts and ends with a button of the toolbar.
class ScanningSection : public Section {
    Q_OBJECT
public:
    using Section::Section;

    /// "Stop" while the watch runs, else "Scan".
    [[nodiscard]] virtual QString scanTitle() const = 0;
    /// What the button does.
    virtual void scanOrStop() = 0;

Q_SIGNALS:
    void scanTitleChanged();
};

} // namespace nightjar
