// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace nightjar {

enum class NotificationSound { standard, critical };

struct Notification {
    std::string identifier; ///< a later one with the same identifier replaces the earlier
    std::string title;      ///< plain text
    std::string body;       ///< plain text
    NotificationSound sound = NotificationSound::standard;

    bool operator==(const Notification&) const = default;
};

/// The desktop's notifications. Main thread; never blocks, and whoever refuses to show one is ignored.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;
    /// Asks for leave to show alerts with sound; the answer is not used.
    virtual void requestPermission() = 0;
    /// Shows a notification at once.
    virtual void post(const Notification& notification) = 0;
};

} // namespace nightjar
