// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/MainThread.h"
#include "platform/PollClock.h"
#include "radio/BridgeClient.h"
#include "radio/MainThreadInbox.h"
#include "radio/MeshRadioOptions.h"
#include "radio/WakeSignal.h"

#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace nightjar {

/// The thread on which the bridge client lives. It sleeps in poll(2) until a task, the bridge or a deadline
/// wakes it.
class RadioThread {
public:
    using Task = std::move_only_function<void(BridgeClient&)>;

    RadioThread(const HostEnvironment& host, MainThread& mainThread, PollClock& clock,
                const MeshRadioOptions& options);
    /// Main thread. Ends every bridge within twice the final grace; what has not been completed by then is
    /// destroyed uncalled, here.
    ~RadioThread();

    /// Any thread. Tasks run on the radio thread in the order in which they were posted.
    void post(Task task);

private:
    void run(const std::stop_token& stop);
    void runTasks();

    const PollClock& m_clock;
    std::shared_ptr<WakeSignal> m_wake;
    std::shared_ptr<MainThreadInbox> m_inbox;
    BridgeClient m_client;
    std::mutex m_mutex;
    std::vector<Task> m_tasks; ///< guarded by the mutex
    PollClock::Registration m_jumps;
    std::jthread m_thread; ///< last, so that it starts when everything else is there
};

} // namespace nightjar
