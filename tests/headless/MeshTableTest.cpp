// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/MeshTable.h"
#include "tests/support/ModelRig.h"

#include <QMetaProperty>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace nightjar::headless {
namespace {

using ::testing::ElementsAre;

TEST(MeshTableTest, everyPublishedPropertyIsInTheTableWithItsOwnSignal) {
    nightjar::testing::ModelRig rig;
    NightjarModel& model = rig.create();
    const auto table = meshTable(model);
    QObject context;
    std::vector<std::string> changed;
    for (const Field& field : table.fields) {
        if (field.observe)
            field.observe(&context, [&changed, &field] { changed.push_back(field.name); });
    }

    const QMetaObject& meta = NightjarModel::staticMetaObject;
    ASSERT_GT(meta.propertyCount(), meta.propertyOffset());
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const Field* field = table.field(property.name());
        ASSERT_NE(field, nullptr) << property.name();
        EXPECT_EQ(bool(field->set), property.isWritable()) << property.name();
        changed.clear();
        property.notifySignal().invoke(&model);
        EXPECT_THAT(changed, ElementsAre(property.name()));
    }
}

} // namespace
} // namespace nightjar::headless
