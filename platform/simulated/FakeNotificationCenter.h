// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NotificationCenter.h"

#include <functional>
#include <vector>

namespace nightjar {

/// A notification centre that only remembers what it was asked to show. One thread.
class FakeNotificationCenter final : public NotificationCenter {
public:
    void requestPermission() override { ++m_permissionRequests; }
    void post(const Notification& notification) override {
        m_posted.push_back(notification);
        if (m_onPost)
            m_onPost(notification);
    }

    /// Everything that was posted, oldest first, replaced ones included.
    [[nodiscard]] const std::vector<Notification>& posted() const { return m_posted; }
    [[nodiscard]] int permissionRequests() const { return m_permissionRequests; }
    /// Also told of each notification as it is posted.
    void onPost(std::function<void(const Notification&)> listener) { m_onPost = std::move(listener); }

private:
    std::vector<Notification> m_posted;
    int m_permissionRequests = 0;
    std::function<void(const Notification&)> m_onPost;
};

} // namespace nightjar
