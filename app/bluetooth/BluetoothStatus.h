// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "app/bluetooth/BluetoothTexts.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace nightjar {

/// The lines that tell the user how the Bluetooth side is doing.
class BluetoothStatus {
public:
    BluetoothStatus(Announcer state, Announcer error)
        : errorMessage(error), m_state(state, std::string(BluetoothTexts::starting)) {}

    [[nodiscard]] const std::string& state() const { return m_state.get(); }
    void show(std::string_view text) {
        m_shownCount.reset();
        m_state.set(std::string(text));
    }
    /// Said with every advertisement: costs nothing while the count stays.
    void showFound(std::size_t count) {
        if (m_shownCount == count)
            return;
        show(BluetoothTexts::found(count));
        m_shownCount = count;
    }

    Published<std::optional<std::string>> errorMessage; ///< the last sentence for the user

private:
    Published<std::string> m_state;
    std::optional<std::size_t> m_shownCount; ///< of devices found, while that is what the line says
};

} // namespace nightjar
