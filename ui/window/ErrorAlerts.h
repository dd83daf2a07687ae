// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/AlertSheet.h"
#include "ui/common/Coalesced.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

class NightjarModel;

/// An error as an alert shows it: not all of it when somebody wrote a novel.
[[nodiscard]] QString alertText(std::string_view error);

/// Shows the errors of the three controllers until the user has seen them, one after another, over the window
/// that is in use. An alert never takes the focus from another program, nor from somebody who is typing: the
/// next space would dismiss it unread. GUI thread.
class ErrorAlerts final : public QObject {
    Q_OBJECT
public:
    /// Alerts appear over one of `windows`: the active one, else the first that can be seen. While none can
    /// be seen the errors wait.
    ErrorAlerts(NightjarModel& model, const QList<QWidget*>& windows, QObject* parent = nullptr);
    ~ErrorAlerts() override;
    /// One more window over which alerts may appear. It may go before this object does.
    void addWindow(QWidget& window);
    [[nodiscard]] AlertSheet* shown() const { return m_sheet; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Source {
        QString title;
        std::function<const std::optional<std::string>&()> error;
        std::function<void()> clear;
    };

    template <class Controller>
    void addSource(const QString& title, Controller& controller);
    [[nodiscard]] QWidget* windowToUse() const;
    [[nodiscard]] bool isOutdated() const;
    void refresh();
    void showNext();
    void show(std::size_t source, QWidget& window);
    void close();
    void dismissed();

    std::vector<QPointer<QWidget>> m_windows;
    std::vector<Source> m_sources;
    std::size_t m_current = 0; ///< whose error is shown, or was last
    std::string m_shownError;
    QPointer<AlertSheet> m_sheet;
    QTimer m_typing; ///< runs until the user has paused
    Coalesced m_refresh;
};

} // namespace nightjar
