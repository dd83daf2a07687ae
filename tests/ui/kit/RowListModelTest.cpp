// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/rows/RowListModel.h"

#include <QAbstractItemModelTester>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>

namespace nightjar {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> linesOf(const RowListModel& model) {
    std::vector<std::string> lines;
    for (int place = 0; place < model.rowCount(); ++place)
        lines.push_back((model.isTitle(place) ? "# " : "") +
                        model.index(place).data().toString().toStdString());
    return lines;
}

Row rowNamed(const std::string& id) {
    return {.symbol = {}, .title = QString::fromStdString(id), .caption = {}};
}

TEST(RowListModelTest, listsTitledSectionsWithoutTheEmptyOnes) {
    RowListModel model(rowNamed);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    const auto title = [](const char* text) { return QString::fromUtf8(text); };

    model.setSections({{title("Tracked"), {}}, {title("Nearby"), {"a", "b", "a"}}, {title("a"), {"c", "b"}}});
    EXPECT_THAT(linesOf(model), ElementsAre("# Nearby", "a", "b", "# a", "c"));
    EXPECT_EQ(model.idAt(0), "");
    EXPECT_EQ(model.idAt(1), "a");
    EXPECT_EQ(model.placeOf("c"), 4);
    EXPECT_FALSE(model.placeOf("Nearby"));
    EXPECT_EQ(model.flags(model.index(0)), Qt::NoItemFlags);

    model.setSections({{title("Tracked"), {"c"}}, {title("Nearby"), {"b", "a"}}});
    EXPECT_THAT(linesOf(model), ElementsAre("# Tracked", "c", "# Nearby", "b", "a"));
    model.setSections({});
    EXPECT_THAT(linesOf(model), IsEmpty());
}

/// Whoever follows a row by a persistent index, as views do with the selection, still finds it.
TEST(RowListModelTest, keepsTrackOfItsRowsHoweverTheyAreSorted) {
    RowListModel model(rowNamed);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::mt19937 random(7);
    std::map<std::string, QPersistentModelIndex> followed;

    for (int round = 0; round < 300; ++round) {
        std::vector<RowSection> sections(3);
        std::vector<std::string> all;
        for (int number = 0; number < 20; ++number) {
            if (random() % 4 != 0)
                all.push_back("device " + std::to_string(number));
        }
        std::ranges::shuffle(all, random);
        for (std::size_t place = 0; place < sections.size(); ++place)
            sections[place].title = QStringLiteral("section %1").arg(place);
        for (const auto& id : all)
            sections[random() % 3].ids.push_back(id);

        model.setSections(sections);

        std::vector<std::string> expected;
        for (const auto& section : sections) {
            if (!section.ids.empty())
                expected.push_back("# " + section.title.toStdString());
            expected.insert(expected.end(), section.ids.begin(), section.ids.end());
        }
        ASSERT_EQ(linesOf(model), expected);
        for (const auto& [id, index] : followed) {
            const bool isThere = std::ranges::find(all, id) != all.end();
            ASSERT_EQ(index.isValid(), isThere) << id;
            ASSERT_EQ(model.idAt(index.row()), isThere ? id : "");
        }
        followed.clear();
        for (const auto& id : all)
            followed[id] = model.index(*model.placeOf(id));
    }
}

} // namespace
} // namespace nightjar
