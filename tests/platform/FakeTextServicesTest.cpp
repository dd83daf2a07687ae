// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakeTextServices.h"

#include <gmock/gmock.h>

#include <vector>

namespace nightjar {
namespace {

TEST(FakeTextServices, ordersNamesAsAFileBrowserDoes) {
    const std::vector<std::string> inOrder{
        "",    "0",   "1",     "01a",    "2",      "10",   "18446744073709551616", std::string(400, '9'),
        "Fox", "fox", "fox 2", "Fox 10", "fox 10", "foxes"};
    const FakeTextServices text;

    for (std::size_t i = 1; i < inOrder.size(); ++i) {
        EXPECT_LT(text.collationKey(inOrder[i - 1]), text.collationKey(inOrder[i]))
            << '"' << inOrder[i - 1] << "\" before \"" << inOrder[i] << '"';
    }
}

} // namespace
} // namespace nightjar
