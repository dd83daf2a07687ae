// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVariant>

#include <map>

namespace nightjar {

/// The computer's Bluetooth adapters by object path, and the one that is used: it stays as long as it is
/// powered.
class BluezAdapters {
public:
    /// Begins anew what is known of the adapter.
    void add(const QString& path);
    /// Properties of another type than they should have change nothing, as do those of an unknown adapter.
    void set(const QString& path, const QString& property, const QVariant& value);
    void remove(const QString& path);
    void clear();

    /// Looks which adapter is to be used now; true when that is another one than before.
    bool choose();
    /// Empty when none is powered.
    [[nodiscard]] const QString& chosen() const { return m_chosen; }
    /// Whether an adapter could look for devices, powered or not.
    [[nodiscard]] bool hasCentral() const;
    /// Whether the object lies under the chosen adapter.
    [[nodiscard]] bool isUnderChosen(const QString& path) const {
        return !m_chosen.isEmpty() && path.startsWith(m_prefix);
    }

private:
    struct Adapter {
        bool isPowered = false;
        bool isCentral = true; ///< daemons that tell no roles know no others
    };
    static constexpr std::size_t mostAdapters = 64;

    std::map<QString, Adapter> m_adapters;
    QString m_chosen;
    QString m_prefix;
};

} // namespace nightjar
