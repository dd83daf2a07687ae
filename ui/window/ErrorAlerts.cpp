// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/ErrorAlerts.h"

#include "app/mesh/NightjarModel.h"
#include "ui/text/ShownText.h"

#include <QApplication>
#include <QEvent>
#include <QLineEdit>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nightjar {

namespace {

constexpr qsizetype mostCharacters = 600;
constexpr qsizetype mostLines = 12;
constexpr std::chrono::milliseconds pauseOfTyping{1500};

bool canBeSeen(const QWidget* window) {
    return window && window->isVisible() && !window->isMinimized();
}

} // namespace

QString alertText(std::string_view error) {
    const QString all = shownText(error);
    QString text = all.section(u'\n', 0, mostLines - 1).left(mostCharacters);
    if (text.size() < all.size())
        text += u'…';
    return text;
}

ErrorAlerts::ErrorAlerts(NightjarModel& model, const QList<QWidget*>& windows, QObject* parent)
    : QObject(parent), m_refresh([this] { refresh(); }) {
    for (QWidget* window : windows)
        addWindow(*window);
    addSource(QStringLiteral("Halvard Nightjar"), model);
    addSource(QStringLiteral("Bluetooth"), model.bluetoothTrackers());
    addSource(QStringLiteral("Local Network"), model.localNetwork());
    m_current = m_sources.size() - 1; // so that the first comes first
    m_typing.setSingleShot(true);
    m_typing.setInterval(pauseOfTyping);
    connect(&m_typing, &QTimer::timeout, &m_refresh, &Coalesced::request);
    qApp->installEventFilter(this);
}

ErrorAlerts::~ErrorAlerts() {
    close();
}

void ErrorAlerts::addWindow(QWidget& window) {
    m_windows.emplace_back(&window);
    m_refresh.request();
}

template <class Controller>
void ErrorAlerts::addSource(const QString& title, Controller& controller) {
    m_sources.push_back(
        {.title = title,
         .error = [&controller]() -> const std::optional<std::string>& { return controller.errorMessage(); },
         .clear = [&controller] { controller.setErrorMessage(std::nullopt); }});
    connect(&controller, &Controller::errorMessageChanged, &m_refresh, &Coalesced::request);
}

bool ErrorAlerts::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::InputMethod:
        if (qobject_cast<QLineEdit*>(watched))
            m_typing.start();
        break;
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::WindowStateChange:
        if (std::ranges::find(m_windows, watched, &QPointer<QWidget>::data) != m_windows.end())
            m_refresh.request();
        break;
    default:
        break;
    }
    return false;
}

QWidget* ErrorAlerts::windowToUse() const {
    const auto usable = [](const QPointer<QWidget>& window) { return canBeSeen(window); };
    for (QWidget* active = QApplication::activeWindow(); active; active = active->parentWidget()) {
        const auto found = std::ranges::find(m_windows, active, &QPointer<QWidget>::data);
        if (found != m_windows.end() && usable(*found))
            return *found;
    }
    const auto first = std::ranges::find_if(m_windows, usable);
    return first == m_windows.end() ? nullptr : first->data();
}

/// Cleared elsewhere, or the window under the alert has gone.
bool ErrorAlerts::isOutdated() const {
    return !m_sources[m_current].error() || !canBeSeen(m_sheet->parentWidget()->window());
}

void ErrorAlerts::refresh() {
    if (m_sheet && isOutdated())
        close();
    if (!m_sheet) {
        showNext();
        return;
    }
    const auto& error = *m_sources[m_current].error();
    if (error != m_shownError) {
        m_shownError = error;
        m_sheet->setText(alertText(error));
    }
}

/// Who has just been seen comes last, so that one who complains without end does not hide the others.
void ErrorAlerts::showNext() {
    QWidget* window = windowToUse();
    if (!window || m_typing.isActive())
        return;
    for (std::size_t step = 1; step <= m_sources.size(); ++step) {
        const auto source = (m_current + step) % m_sources.size();
        if (m_sources[source].error()) {
            show(source, *window);
            return;
        }
    }
}

void ErrorAlerts::show(std::size_t source, QWidget& window) {
    m_current = source;
    m_shownError = *m_sources[source].error();
    m_sheet =
        new AlertSheet(m_sources[source].title, alertText(m_shownError), {QStringLiteral("OK")}, &window);
    m_sheet->setAttribute(Qt::WA_ShowWithoutActivating, !QApplication::activeWindow());
    connect(m_sheet, &QDialog::finished, this, &ErrorAlerts::dismissed);
    m_sheet->open();
}

void ErrorAlerts::close() {
    if (auto* sheet = std::exchange(m_sheet, nullptr).data()) {
        sheet->disconnect(this);
        sheet->close();
    }
}

void ErrorAlerts::dismissed() {
    m_sheet = nullptr;
    // What came in the meantime has not been seen yet.
    if (m_sources[m_current].error() == m_shownError)
        m_sources[m_current].clear();
    m_refresh.request();
}

} // namespace nightjar
