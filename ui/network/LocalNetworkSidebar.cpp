// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/LocalNetworkSidebar.h"

#include "ui/common/SidebarPage.h"
#include "ui/common/StatusLine.h"
#include "ui/network/LocalNetworkRows.h"
#include "ui/rows/SidebarList.h"
#include "ui/text/ShownText.h"

#include <QMenu>
#include <QVBoxLayout>

namespace nightjar {

LocalNetworkSidebar::LocalNetworkSidebar(ViewContext& context, Selection& selection, QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_selection(selection),
      m_page(new SidebarPage(
          QStringLiteral("Local Network devices"), [this](const std::string& id) { return rowOf(id); },
          QStringLiteral("network"))),
      m_refresh([this] { refresh(); }) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_page);

    const auto& browser = context.localNetwork();
    connect(&browser, &LocalNetworkBrowser::devicesChanged, &m_refresh, &Coalesced::request);
    connect(&browser, &LocalNetworkBrowser::stateChanged, &m_refresh, &Coalesced::request);
    connect(&browser, &LocalNetworkBrowser::isScanningChanged, &m_refresh, &Coalesced::request);
    connect(&selection, &Selection::changed, &m_refresh, &Coalesced::request);
    connect(&context, &ViewContext::timePassed, this, [this] { m_page->list().refreshRows(); });
    connect(&m_page->list(), &SidebarList::selected, &selection, &Selection::set);
    connect(&m_page->list(), &SidebarList::menuRequested, this, &LocalNetworkSidebar::openMenu);
    refresh();
}

Row LocalNetworkSidebar::rowOf(const std::string& id) const {
    const auto* device = m_context.localNetwork().deviceWith(id);
    return device ? localNetworkDeviceRow(*device, m_context.relativeTime(device->lastSeen)) : Row();
}

void LocalNetworkSidebar::refresh() {
    const auto& browser = m_context.localNetwork();
    m_page->status().setText(shownLine(browser.state()));
    m_page->list().setSections(localNetworkSections(browser.devices()));
    m_page->list().select(m_selection.id());
    if (!browser.devices().empty())
        m_page->showList();
    else if (browser.isScanning())
        m_page->showUnavailable(QStringLiteral("Looking for devices"),
                                QStringLiteral("Bonjour devices will appear as they announce services."));
    else
        m_page->showUnavailable(QStringLiteral("No Local Network devices"),
                                QStringLiteral("Start a scan to listen for devices on this network."));
}

void LocalNetworkSidebar::openMenu(const std::string& id, QPoint at) {
    auto& browser = m_context.localNetwork();
    const auto* device = browser.deviceWith(id);
    if (!device)
        return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (device->isTracked)
        menu->addAction(QStringLiteral("Stop Tracking"), this, [&browser, id] { browser.stopTracking(id); });
    else
        menu->addAction(QStringLiteral("Track This Device"), this, [&browser, id] { browser.track(id); });
    menu->addSeparator();
    menu->addAction(QStringLiteral("Forget Device"), this, [&browser, id] { browser.forget(id); });
    menu->popup(at);
}

} // namespace nightjar
