// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ReadableLines.h"
#include "app/headless/StateLines.h"
#include "app/network/LocalNetworkBrowser.h"

#include <QObject>

#include <functional>
#include <string>
#include <unordered_map>

namespace nightjar::headless {

/// The local network side as lines for people: its state, each device when it is first there and when it
/// comes and goes, and what is watched. Main thread.
class NetworkReport : public QObject {
    Q_OBJECT
public:
    /// `changed` is called after each change that `print` may have something to say about.
    NetworkReport(LocalNetworkBrowser& browser, std::function<void()> changed);

    void print(ReadableLines& lines);

private:
    struct Told {
        bool isOnline = false;
        std::string watch;       ///< how it is watched, as it was last printed
        std::string watchedName; ///< likewise
    };

    void printDevice(const LocalNetworkDevice& device, ReadableLines& lines);
    void forgetUnknown(ReadableLines& lines);

    LocalNetworkBrowser& m_browser;
    std::function<void()> m_changed;
    StateLines m_states;
    bool m_devicesChanged = true;
    std::unordered_map<std::string, Told> m_told; ///< by identifier
};

} // namespace nightjar::headless
