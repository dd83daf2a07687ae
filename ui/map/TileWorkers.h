// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMutex>
#include <QThreadPool>

#include <functional>
#include <memory>

namespace nightjar {

/// A few threads for what takes longer than a frame. They end by themselves when there is nothing to do. A
/// disk that hangs keeps its thread and is left behind, never waited for. GUI thread.
class TileWorkers {
public:
    using Arrival = std::function<void()>;

    TileWorkers(QObject& owner, int threads);
    ~TileWorkers();
    TileWorkers(const TileWorkers&) = delete;
    TileWorkers& operator=(const TileWorkers&) = delete;

    /// Runs `work` on a thread, then what it returns on the owner's, unless the owner is gone by then.
    void run(std::function<Arrival()> work);

private:
    struct Way {
        QMutex mutex;
        QObject* owner;
    };

    std::shared_ptr<Way> m_way;
    std::unique_ptr<QThreadPool> m_pool;
};

} // namespace nightjar
