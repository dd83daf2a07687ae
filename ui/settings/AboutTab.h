// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

namespace nightjar {

/// What the program is and what its three watches can and cannot tell.
class AboutTab final : public QWidget {
    Q_OBJECT
public:
    explicit AboutTab(const QString& version, QWidget* parent = nullptr);
};

} // namespace nightjar
