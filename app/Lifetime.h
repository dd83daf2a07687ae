// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/MainThread.h"

#include <memory>
#include <utility>

namespace nightjar {

/// The life of an object as its asynchronous steps see it: a step that comes back after the object is gone
/// does nothing. Declared as the last member, so that it ends first. Steps run, and the object is destroyed,
/// on the main thread.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

    /// `step`, run only while the object lives.
    template <class Step>
    [[nodiscard]] auto guarded(Step step) const {
        return [alive = std::weak_ptr<const char>(m_token),
                step = std::move(step)](auto&&... arguments) mutable {
            if (!alive.expired())
                step(std::forward<decltype(arguments)>(arguments)...);
        };
    }

    /// A completion for another thread, which brings its one value home: `step` runs with it on the main
    /// thread, while the object lives.
    template <class Step>
    [[nodiscard]] auto broughtHome(MainThread& mainThread, Step step) const {
        return [&mainThread, job = guarded(std::move(step))](auto value) mutable {
            mainThread.post(
                [job = std::move(job), value = std::move(value)]() mutable { job(std::move(value)); });
        };
    }

private:
    std::shared_ptr<const char> m_token = std::make_shared<const char>('\0');
};

} // namespace nightjar
