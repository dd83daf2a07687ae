// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/ServiceRow.h"

#include "core/network/LocalNetworkDevice.h"
#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"
#include "ui/text/ShownText.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace nightjar {

ServiceRow::ServiceRow(const std::string& serviceType, QWidget* parent) : QWidget(parent) {
    auto* name = new ElidedLabel;
    name->setFullText(shownLine(LocalNetworkDevice::readableServiceName(serviceType)));
    auto* type = new ElidedLabel(TextSize::caption, Tint::secondary);
    type->setFullText(shownLine(serviceType));
    speakAs(*this, Spoken::text);
    setAccessibleName(name->fullText() + QStringLiteral(", ") + type->fullText());

    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(name);
    texts->addWidget(type);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 6, 12, 6);
    layout->setSpacing(10);
    layout->addWidget(new SymbolView(QStringLiteral("bonjour"), 18, Tint::blue));
    layout->addLayout(texts, 1);
}

} // namespace nightjar
