// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/BluetoothTable.h"
#include "app/headless/MeshTable.h"
#include "app/headless/NetworkTable.h"
#include "tests/support/ModelRig.h"

#include <QMetaProperty>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace nightjar::headless {
namespace {

using ::testing::ElementsAre;

void expectEveryPropertyWithItsSignal(QObject& controller, const ControllerTable& table) {
    QObject context;
    std::vector<std::string> changed;
    for (const Field& field : table.fields) {
        if (field.observe)
            field.observe(&context, [&changed, &field] { changed.push_back(field.name); });
    }

    const QMetaObject& meta = *controller.metaObject();
    ASSERT_GT(meta.propertyCount(), meta.propertyOffset());
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const Field* field = table.field(property.name());
        ASSERT_NE(field, nullptr) << property.name();
        EXPECT_EQ(bool(field->set), property.isWritable()) << property.name();
        // The devices heard tell of their changes one by one.
        if (field->tellChanges && std::string_view(property.name()) == "devices")
            continue;
        changed.clear();
        property.notifySignal().invoke(&controller);
        EXPECT_THAT(changed, ElementsAre(property.name()));
    }
}

TEST(ControllerTablesTest, everyPublishedPropertyIsInItsTableWithItsOwnSignal) {
    nightjar::testing::ModelRig rig;
    NightjarModel& model = rig.create();
    expectEveryPropertyWithItsSignal(model, meshTable(model));
    expectEveryPropertyWithItsSignal(model.bluetoothTrackers(), bluetoothTable(model.bluetoothTrackers()));
    expectEveryPropertyWithItsSignal(model.localNetwork(), networkTable(model.localNetwork()));
}

} // namespace
} // namespace nightjar::headless
