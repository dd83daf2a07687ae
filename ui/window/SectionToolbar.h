// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"
#include "ui/window/NetworkSection.h"

#include <QWidget>

class QHBoxLayout;
class QPushButton;

namespace nightjar {

class IconButton;
class MeshSection;
class ScanningSection;
class SegmentedControl;

/// The choice of the watch, and what can be done with the one on screen.
class SectionToolbar final : public QWidget {
    Q_OBJECT
public:
    struct Sections {
        ScanningSection& bluetooth;
        ScanningSection& localNetwork;
        MeshSection& mesh;
    };
    SectionToolbar(ViewContext& context, const Sections& sections, QWidget* parent = nullptr);

    /// Tells nobody.
    void showSection(NetworkSection section);
    /// What the button at the end of the present section does: scan again, or connect the base anew.
    void scanOrReconnect();

Q_SIGNALS:
    void chosen(nightjar::NetworkSection section);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void buildMeshControls(QHBoxLayout& layout);
    void refresh();
    void refreshMesh();
    void reconnect();
    [[nodiscard]] ScanningSection* scanning() const;

    ViewContext& m_context;
    Sections m_sections;
    NetworkSection m_section = NetworkSection::meshtastic;
    SegmentedControl* m_network;
    QPushButton* m_scan;
    SegmentedControl* m_view = nullptr;
    IconButton* m_fit = nullptr;
    IconButton* m_reconnect = nullptr;
    Coalesced m_refresh;
};

} // namespace nightjar
