// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/linux/SoundOutput.h"

#include <memory>

struct ca_context;

namespace nightjar {

/// Sounds through libcanberra. Nothing is written to standard error.
class CanberraOutput final : public SoundOutput {
public:
    CanberraOutput();
    ~CanberraOutput() override;

    [[nodiscard]] Opened open(Way way) override;
    [[nodiscard]] Played play(const Sound& sound) override;
    void close() override;

private:
    struct Destroy {
        void operator()(ca_context* context) const;
    };
    std::unique_ptr<ca_context, Destroy> m_context;
    Way m_way = Way::soundServer;
};

} // namespace nightjar
