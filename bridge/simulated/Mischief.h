// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"

#include <string_view>

namespace nightjar::bridge {

/// What a broken bridge does besides speaking the protocol. Only scripted faults use it; no part of the
/// protocol side knows of it.
class Mischief {
public:
    virtual ~Mischief() = default;
    virtual void writeRaw(std::string_view bytes) = 0;
    virtual void writeToStandardError(std::string_view bytes) = 0;
    /// The next line goes out in two halves with a wait between them; nothing overtakes the second half.
    virtual void cutNextLine(Seconds wait) = 0;
    /// Everything written so far still goes out.
    virtual void closeOutput() = 0;
    virtual void exit(int code) = 0;
    /// Neither the end of input nor a request to terminate ends the program for that long.
    virtual void refuseToEnd(Seconds duration) = 0;
};

} // namespace nightjar::bridge
