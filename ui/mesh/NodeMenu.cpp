// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/NodeMenu.h"

#include "ui/mesh/MeshRows.h"

#include <QMenu>

#include <utility>

namespace nightjar {

void openNodeMenu(ViewContext& context, std::optional<std::uint32_t> number, QWidget* parent, QPoint at,
                  std::function<void()> message) {
    if (!number)
        return;
    auto* menu = new QMenu(parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Message"), parent,
                    [&context, node = *number, message = std::move(message)] {
                        context.model().setMessageRecipient(node);
                        message();
                    });
    menu->addAction(QStringLiteral("Guard This Device"), parent,
                    [&context, node = *number] { guard(context.model(), node); });
    menu->popup(at);
}

void guard(NightjarModel& model, std::uint32_t number) {
    if (const auto* found = MeshRows::find(model, number)) {
        const MeshNode node = *found;
        model.setGuarded(node);
    }
}

} // namespace nightjar
