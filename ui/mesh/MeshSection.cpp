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

MeshSection::MeshSection(ViewContext& context)
    : m_trail(context.model()),
      m_sidebar(new MeshSidebar(context)),
      m_content(new QStackedWidget),
      m_map(new MeshMap(context, m_trail)),
      m_messages(new MessagesView(context)),
      m_inspector(new MeshInspector(context, m_trail)) {
    m_content->addWidget(m_map);
    m_content->addWidget(m_messages);
    connect(m_sidebar, &MeshSidebar::messageRequested, this, &MeshSection::writeMessage);
    connect(m_map, &MeshMap::messageRequested, this, &MeshSection::writeMessage);
    connect(m_inspector, &MeshInspector::messageRequested, this, &MeshSection::writeMessage);
}

QWidget* MeshSection::sidebar() {
    return m_sidebar;
}

QWidget* MeshSection::content() {
    return m_content;
}

QWidget* MeshSection::inspector() {
    return m_inspector;
}

void MeshSection::takeFocus() {
    m_sidebar->list().setFocus(Qt::OtherFocusReason);
}

MeshtasticSection MeshSection::meshtasticSection() const {
    return static_cast<MeshtasticSection>(m_content->currentIndex());
}

void MeshSection::setMeshtasticSection(MeshtasticSection section) {
    if (section == meshtasticSection())
        return;
    m_content->setCurrentIndex(static_cast<int>(section));
    Q_EMIT meshtasticSectionChanged();
}

void MeshSection::writeMessage() {
    setMeshtasticSection(MeshtasticSection::messages);
    m_messages->takeFocus();
}

} // namespace nightjar
