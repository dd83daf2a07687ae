// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/style/Colors.h"

#include <QString>

#include <string>
#include <vector>

namespace nightjar {

/// A small symbol at the end of a row.
struct RowBadge {
    QString symbol;
    Tint tint = Tint::secondary;
    QString help; ///< its tool tip, and what a screen reader says

    bool operator==(const RowBadge&) const = default;
};

/// What a row of a sidebar shows. Texts are fit to be shown.
struct Row {
    QString symbol;
    Tint tint = Tint::blue;
    QString title;
    QString caption;
    std::vector<RowBadge> badges{};

    bool operator==(const Row&) const = default;
};

/// Rows under one title, by their identities. A section without rows is not shown.
struct RowSection {
    QString title;
    std::vector<std::string> ids;
};

} // namespace nightjar
