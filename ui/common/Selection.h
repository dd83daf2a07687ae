// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include <string>
#include <utility>

namespace nightjar {

/// Which record of a section the user has chosen; the views of the section share it. The record may be gone.
class Selection final : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// Empty: none.
    [[nodiscard]] const std::string& id() const { return m_id; }
    void set(std::string id) {
        if (id == m_id)
            return;
        m_id = std::move(id);
        Q_EMIT changed();
    }

Q_SIGNALS:
    void changed();

private:
    std::string m_id;
};

} // namespace nightjar
