// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "app/headless/JsonLinesRequest.h"
#include "app/headless/LineSink.h"
#include "platform/NotificationCenter.h"

#include <QObject>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar::headless {

/// The controllers as JSON lines: tells what they publish and calls what it is told to call. Main thread.
/// While the reader is behind, published fields wait and then come with their latest value; answers and
/// notifications never wait.
class JsonLinesSession : public QObject {
    Q_OBJECT
public:
    JsonLinesSession(std::vector<ControllerTable> tables, LineSink& output);
    ~JsonLinesSession() override;

    /// Prints every published field, and from now on each change, once per turn of the event loop.
    void start();
    /// Carries out one line of input and answers it.
    void handle(std::string_view line);
    void refuseTooLongLine();
    void tell(const Notification& notification);
    /// Prints what has changed as far as the reader takes it; to be called when it has caught up.
    void flush();

private:
    struct Watched;

    void noteChange(Watched& watched);
    [[nodiscard]] bool print(Watched& watched);
    void carryOut(const JsonLinesRequest& request, const ControllerTable& table);
    void answer(std::string_view type, std::string_view id, std::string_view key = {},
                std::string_view json = {});
    void refuse(std::string_view id, std::string_view reason);

    std::vector<ControllerTable> m_tables;
    LineSink& m_output;
    std::deque<Watched> m_watched;
    std::deque<Watched*> m_changed; ///< in the order of their first change since they were printed
    bool m_scheduled = false;
};

} // namespace nightjar::headless
