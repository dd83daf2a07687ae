// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapAccessible.h"

#include "ui/map/MapView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace nightjar {

namespace {

constexpr qsizetype longestName = 300;
constexpr int discSize = 30; ///< points

int indexOf(const MapView& map, const QString& id) {
    const auto& markers = map.markers();
    const auto found = std::ranges::find(markers, id, &MapMarker::id);
    return found == markers.end() ? -1 : static_cast<int>(found - markers.begin());
}

/// One marker, found by its id; gone when the map no longer has it. An absent id is the circle.
class AccessibleMarker final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessibleMarker(MapView& map, std::optional<QString> id) : m_map(&map), m_id(std::move(id)) {}

    [[nodiscard]] bool isValid() const override {
        return m_map && (m_id ? marker() != nullptr : m_map->circle().has_value());
    }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QWindow* window() const override {
        return m_map ? m_map->window()->windowHandle() : nullptr;
    }
    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(m_map);
    }
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QAccessible::Role role() const override {
        return m_id ? QAccessible::ListItem : QAccessible::Graphic;
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Name || !isValid())
            return {};
        if (!m_id)
            return plainLine(m_map->circle()->title, longestName);
        const MapMarker& it = *marker();
        return plainLine(it.accessibleText.isEmpty() ? it.title : it.accessibleText, longestName);
    }
    void setText(QAccessible::Text, const QString&) override {}

    [[nodiscard]] QRect rect() const override {
        if (!isValid())
            return {};
        const QPointF at = m_map->positionOf(m_id ? marker()->at : m_map->circle()->center);
        return {m_map->mapToGlobal(at.toPoint()) - QPoint(discSize, discSize) / 2, QSize(discSize, discSize)};
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid)
            return state;
        state.focusable = state.selectable = m_id.has_value();
        state.selected = m_id && *m_id == m_map->selectedMarker();
        state.focused = m_id && *m_id == m_map->keyboardMarker() && m_map->hasFocus();
        state.offscreen = !m_map->rect().contains(m_map->mapFromGlobal(rect().center()));
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface && m_id ? static_cast<QAccessibleActionInterface*>(this)
                                                            : nullptr;
    }
    [[nodiscard]] QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& name) override {
        if (!isValid() || !m_id)
            return;
        const QString id = *m_id; // what is called may remove the marker, and this with it
        if (name == pressAction())
            m_map->activateMarker(id);
        else if (name == setFocusAction())
            m_map->focusMarker(id);
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    [[nodiscard]] const MapMarker* marker() const {
        const int index = m_map ? indexOf(*m_map, *m_id) : -1;
        return index < 0 ? nullptr : &m_map->markers()[static_cast<std::size_t>(index)];
    }

    QPointer<MapView> m_map;
    std::optional<QString> m_id;
};

/// The markers, then the circle, then the buttons.
class AccessibleMap final : public QAccessibleWidget {
public:
    explicit AccessibleMap(MapView& map) : QAccessibleWidget(&map, QAccessible::List), m_map(map) {}
    ~AccessibleMap() override { forgetMarkers(); }
    AccessibleMap(const AccessibleMap&) = delete;
    AccessibleMap& operator=(const AccessibleMap&) = delete;

    [[nodiscard]] int childCount() const override { return drawn() + QAccessibleWidget::childCount(); }

    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        const auto markers = static_cast<int>(m_map.markers().size());
        if (index < 0 || index >= drawn())
            return index < 0 ? nullptr : QAccessibleWidget::child(index - drawn());
        if (index == markers)
            return interfaceOf(std::nullopt);
        return interfaceOf(m_map.markers()[static_cast<std::size_t>(index)].id);
    }

    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        for (int i = 0; i < drawn(); ++i)
            if (this->child(i) == child)
                return i;
        const int button = QAccessibleWidget::indexOfChild(child);
        return button < 0 ? button : button + drawn();
    }

    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        for (int i = childCount() - 1; i >= 0; --i)
            if (QAccessibleInterface* found = child(i); found && found->rect().contains(x, y))
                return found;
        return nullptr;
    }

    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        const int index = m_map.hasFocus() ? indexOf(m_map, m_map.keyboardMarker()) : -1;
        return index < 0 ? QAccessibleWidget::focusChild() : child(index);
    }

    void forgetMarkers() {
        for (const QAccessible::Id id : std::exchange(m_known, {}))
            QAccessible::deleteAccessibleInterface(id);
    }

private:
    [[nodiscard]] int drawn() const {
        return static_cast<int>(m_map.markers().size()) + (m_map.circle() ? 1 : 0);
    }

    [[nodiscard]] QAccessibleInterface* interfaceOf(const std::optional<QString>& id) const {
        const QString key = id ? u'm' + *id : QString();
        if (const auto known = m_known.constFind(key); known != m_known.cend())
            return QAccessible::accessibleInterface(*known);
        auto* made = new AccessibleMarker(m_map, id);
        m_known.insert(key, QAccessible::registerAccessibleInterface(made));
        return made;
    }

    MapView& m_map;
    mutable QHash<QString, QAccessible::Id> m_known;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    auto* map = qobject_cast<MapView*>(object);
    return map ? new AccessibleMap(*map) : nullptr;
}

} // namespace

void installMapAccessibility() {
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    (void)isInstalled;
}

void tellMarkersChanged(MapView& map) {
    if (!QAccessible::isActive())
        return;
    if (auto* known = dynamic_cast<AccessibleMap*>(QAccessible::queryAccessibleInterface(&map)))
        known->forgetMarkers();
    QAccessibleEvent event(&map, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

void tellMarkerFocused(MapView& map) {
    const int index = indexOf(map, map.keyboardMarker());
    if (!QAccessible::isActive() || index < 0)
        return;
    QAccessibleEvent event(&map, QAccessible::Focus);
    event.setChild(index);
    QAccessible::updateAccessibility(&event);
}

} // namespace nightjar
