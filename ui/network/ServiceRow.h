// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

#include <string>

namespace nightjar {

/// A type of service that a device announced: what it is called, and its raw form.
class ServiceRow final : public QWidget {
    Q_OBJECT
public:
    explicit ServiceRow(const std::string& serviceType, QWidget* parent = nullptr);
};

} // namespace nightjar
