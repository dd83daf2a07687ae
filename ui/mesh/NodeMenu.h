// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/ViewContext.h"

#include <QPoint>

#include <cstdint>
#include <functional>
#include <optional>

class QWidget;

namespace nightjar {

/// Opens the menu of a node: write to it, guard it. `message` runs once the node is the recipient.
void openNodeMenu(ViewContext& context, std::optional<std::uint32_t> number, QWidget* parent, QPoint at,
                  std::function<void()> message);

/// The node becomes the one that is guarded, if it is still there.
void guard(NightjarModel& model, std::uint32_t number);

} // namespace nightjar
