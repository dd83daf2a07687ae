// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/LocalNetworkSection.h"

#include "ui/common/SidebarPage.h"
#include "ui/network/LocalNetworkContent.h"
#include "ui/network/LocalNetworkInspector.h"
#include "ui/network/LocalNetworkRows.h"
#include "ui/network/LocalNetworkSidebar.h"

#include <utility>

namespace nightjar {

LocalNetworkSection::LocalNetworkSection(ViewContext& context)
    : m_context(context), m_devicesChanged([this] { devicesChanged(); }) {
    const auto& browser = context.localNetwork();
    connect(&browser, &LocalNetworkBrowser::devicesChanged, &m_devicesChanged, &Coalesced::request);
    connect(&browser, &LocalNetworkBrowser::isScanningChanged, this, &ScanningSection::scanTitleChanged);
}

LocalNetworkSection::~LocalNetworkSection() {
    delete m_sidebar;
    delete m_content;
    delete m_inspector;
}

QWidget* LocalNetworkSection::sidebar() {
    if (!m_sidebar)
        m_sidebar = new LocalNetworkSidebar(m_context, m_selection);
    return m_sidebar;
}

QWidget* LocalNetworkSection::content() {
    if (!m_content)
        m_content = new LocalNetworkContent(m_context, m_selection);
    return m_content;
}

QWidget* LocalNetworkSection::inspector() {
    if (!m_inspector)
        m_inspector = new LocalNetworkInspector(m_context, m_selection);
    return m_inspector;
}

void LocalNetworkSection::activate() {
    m_isActive = true;
    if (auto& browser = m_context.localNetwork(); !browser.isScanning())
        browser.start();
    selectIfNeeded();
}

void LocalNetworkSection::deactivate() {
    m_isActive = false;
    if (auto& browser = m_context.localNetwork(); browser.isScanning())
        browser.stop();
}

void LocalNetworkSection::takeFocus() {
    if (m_sidebar)
        m_sidebar->page().takeFocus();
}

QString LocalNetworkSection::scanTitle() const {
    return m_context.localNetwork().isScanning() ? QStringLiteral("Stop") : QStringLiteral("Scan");
}

void LocalNetworkSection::scanOrStop() {
    auto& browser = m_context.localNetwork();
    if (browser.isScanning())
        browser.stop();
    else
        browser.start();
}

void LocalNetworkSection::devicesChanged() {
    std::vector<std::string> ids;
    for (const auto& device : m_context.localNetwork().devices())
        ids.push_back(device.id);
    if (std::exchange(m_knownIDs, std::move(ids)) != m_knownIDs && m_isActive)
        selectIfNeeded();
}

void LocalNetworkSection::selectIfNeeded() {
    m_selection.set(
        selectFirstTrackedLocalNetworkDeviceIfNeeded(m_selection.id(), m_context.localNetwork().devices()));
}

} // namespace nightjar
