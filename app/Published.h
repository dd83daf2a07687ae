// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

namespace nightjar {

/// How one published field tells the observers of its controller that it changes. Without a controller nobody
/// is told.
struct Announcer {
    void* controller = nullptr;
    void (*aboutToChange)(void* controller) = [](void*) {};
    void (*changed)(void* controller) = [](void*) {};
};

/// A published field: a change is announced while the old value still stands, and told of once the new one
/// does. Setting an equal value is no change. Main thread.
template <class T>
class Published {
public:
    explicit Published(Announcer announcer, T value = T{})
        : m_announcer(announcer), m_value(std::move(value)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const T& get() const { return m_value; }

    void set(T value) {
        if (m_value == value)
            return;
        change([&value](T& stored) { stored = std::move(value); });
    }

    /// For values that are too large to be replaced as a whole.
    template <class Change>
    void change(Change&& applyTo) {
        m_announcer.aboutToChange(m_announcer.controller);
        std::forward<Change>(applyTo)(m_value);
        m_announcer.changed(m_announcer.controller);
    }

private:
    Announcer m_announcer;
    T m_value;
};

} // namespace nightjar
