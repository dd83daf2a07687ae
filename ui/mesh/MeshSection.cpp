// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MeshSection.h"

#include "ui/mesh/MeshInspector.h"
#include "ui/mesh/MeshMap.h"
#include "ui/mesh/MeshSidebar.h"
#include "ui/mesh/MessagesView.h"
#include "ui/rows/SidebarList.h"

#include <QStackedWidget>

namespace nightjar {

MeshSection::MeshSection(ViewContext& context) : m_context(context), m_trail(context.model()) {}

QWidget* MeshSection::sidebar() {
    if (!m_sidebar) {
        m_sidebar = new MeshSidebar(m_context);
        connect(m_sidebar, &MeshSidebar::messageRequested, this, &MeshSection::writeMessage);
    }
    return m_sidebar;
}

QWidget* MeshSection::content() {
    if (!m_content) {
        m_content = new QStackedWidget;
        showContent();
    }
    return m_content;
}

QWidget* MeshSection::inspector() {
    if (!m_inspector) {
        m_inspector = new MeshInspector(m_context, m_trail);
        connect(m_inspector, &MeshInspector::messageRequested, this, &MeshSection::writeMessage);
    }
    return m_inspector;
}

MeshMap& MeshSection::map() {
    if (!m_map) {
        m_map = new MeshMap(m_context, m_trail, content());
        connect(m_map, &MeshMap::messageRequested, this, &MeshSection::writeMessage);
        m_content->addWidget(m_map);
    }
    return *m_map;
}

MessagesView& MeshSection::messages() {
    if (!m_messages) {
        m_messages = new MessagesView(m_context, content());
        m_content->addWidget(m_messages);
    }
    return *m_messages;
}

void MeshSection::takeFocus() {
    if (m_sidebar)
        m_sidebar->list().setFocus(Qt::OtherFocusReason);
}

void MeshSection::setMeshtasticSection(MeshtasticSection section) {
    if (section == m_meshtasticSection)
        return;
    m_meshtasticSection = section;
    if (m_content)
        showContent();
    Q_EMIT meshtasticSectionChanged();
}

void MeshSection::showContent() {
    if (m_meshtasticSection == MeshtasticSection::map)
        m_content->setCurrentWidget(&map());
    else
        m_content->setCurrentWidget(&messages());
}

void MeshSection::writeMessage() {
    setMeshtasticSection(MeshtasticSection::messages);
    messages().takeFocus();
}

} // namespace nightjar
