// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/linux/AvahiSettings.h"
#include "platform/linux/ServiceSets.h"

#include <QDBusMessage>
#include <QString>

#include <functional>
#include <map>
#include <string>

namespace nightjar {

class AvahiDaemon;

/// One browser object of the daemon per service type. Each is told apart by its path: the type that a signal
/// names is that of the answer on the network. A browser that fails or is refused is asked for again later.
/// Main thread; no handler is called inside a call.
class AvahiTypeBrowsers {
public:
    enum class Phase { preparing, running, refused, failed };
    struct Browser {
        Phase phase = Phase::preparing;
        QString problem{}; ///< what the daemon said, when refused or failed
        QString path{};
        std::uint64_t number = 0; ///< answers to an earlier one are dropped
        Timer timer{};            ///< until it counts as complete, or until the next try
    };
    struct Handlers {
        std::function<void(const std::string& type, const std::string& name, ServiceSets::Place,
                           unsigned flags)>
            added{};
        std::function<void(const std::string& type, const std::string& name, ServiceSets::Place)> removed{};
        std::function<void(const std::string& type)> completed{};
        /// What was announced of the type no longer counts.
        std::function<void(const std::string& type)> failed{};
        std::function<void()> phaseChanged{};
    };

    AvahiTypeBrowsers(AvahiDaemon& daemon, Scheduler& scheduler, const AvahiSettings& settings,
                      Handlers handlers);

    void add(const std::string& type);
    /// Ends them all.
    void clear();
    /// The daemon has come: all begin anew.
    void resume();
    /// The daemon has gone.
    void suspend();
    void signalled(const QDBusMessage& signal);

    [[nodiscard]] const std::map<std::string, Browser>& all() const { return m_browsers; }

private:
    void prepare(const std::string& type);
    void prepared(const std::string& type, const QDBusMessage& answer);
    void started(const std::string& type, const QDBusMessage& answer);
    void refuse(const std::string& type, const QDBusMessage& answer);
    void fail(const std::string& type, Phase phase, const QString& problem);
    void itemSignalled(const std::string& type, const QDBusMessage& signal);
    void free(const QString& path);

    AvahiDaemon& m_daemon;
    Scheduler& m_scheduler;
    const AvahiSettings& m_settings;
    Handlers m_handlers;
    std::map<std::string, Browser> m_browsers; ///< by type
    std::map<QString, std::string> m_types;    ///< by path
    std::vector<QString> m_orphans;            ///< paths left in a daemon that hung
    std::uint64_t m_lastNumber = 0;
};

} // namespace nightjar
