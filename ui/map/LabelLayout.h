// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QRectF>

#include <vector>

namespace nightjar {

/// Which labels can be shown without covering each other or a disc. They come in the order of their
/// precedence; the first `certain` ones are shown in any case.
[[nodiscard]] std::vector<bool> labelsThatFit(const std::vector<QRectF>& labels,
                                              const std::vector<QRectF>& discs, std::size_t certain);

} // namespace nightjar
