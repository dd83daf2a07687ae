// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Section.h"
#include "ui/common/ViewContext.h"
#include "ui/mesh/MovementTrail.h"

#include <QPointer>

class QStackedWidget;

namespace nightjar {

class MeshInspector;
class MeshMap;
class MeshSidebar;
class MessagesView;

/// What the content of the mesh shows, in this order; also the titles of the segments.
enum class MeshtasticSection { map, messages };

/// The mesh in the main window.
class MeshSection final : public Section {
    Q_OBJECT
public:
    explicit MeshSection(ViewContext& context);

    [[nodiscard]] QWidget* sidebar() override;
    [[nodiscard]] QWidget* content() override;
    [[nodiscard]] QWidget* inspector() override;
    /// The connection does not depend on what is on screen.
    void activate() override {}
    void deactivate() override {}
    void takeFocus() override;

    [[nodiscard]] MeshtasticSection meshtasticSection() const { return m_meshtasticSection; }
    void setMeshtasticSection(MeshtasticSection section);
    [[nodiscard]] MeshMap& map();

Q_SIGNALS:
    void meshtasticSectionChanged();

private:
    void writeMessage();
    [[nodiscard]] MessagesView& messages();
    void showContent();

    ViewContext& m_context;
    MovementTrail m_trail;
    MeshtasticSection m_meshtasticSection = MeshtasticSection::map;
    QPointer<MeshSidebar> m_sidebar;
    QPointer<QStackedWidget> m_content;
    QPointer<MeshMap> m_map;
    QPointer<MessagesView> m_messages;
    QPointer<MeshInspector> m_inspector;
};

} // namespace nightjar
