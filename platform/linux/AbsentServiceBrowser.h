// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/ServiceBrowser.h"

namespace nightjar {

/// A computer that cannot look around in its network.
class AbsentServiceBrowser final : public ServiceBrowser {
public:
    void setListener(Listener) override {}
    void browse(const std::string&) override {}
    void cancel() override {}
    void setImportant(std::function<bool(const ServiceInstance&)>) override {}
};

} // namespace nightjar
