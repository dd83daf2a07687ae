// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "core/json/JsonValue.h"

#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar::headless {

/// One line from whoever operates the program.
class JsonLinesRequest {
public:
    enum class Kind { operation, set, get };

    /// Why a line is no request.
    struct Refusal {
        std::string id; ///< as in `id()`
        std::string reason;
    };

    [[nodiscard]] static std::expected<JsonLinesRequest, Refusal> parse(std::string_view line);

    /// JSON, exactly as it was written; empty when the request has none.
    [[nodiscard]] const std::string& id() const { return m_id; }
    [[nodiscard]] const std::string& controller() const { return m_controller; }
    [[nodiscard]] Kind kind() const { return m_kind; }
    /// Of the operation or the field.
    [[nodiscard]] const std::string& name() const { return m_name; }
    /// The arguments of an operation, or the one value to set. They live as long as the request.
    [[nodiscard]] std::vector<Argument> arguments() const;

private:
    struct Value {
        json::JsonValue value;
        std::string text;
    };

    std::string m_id;
    std::string m_controller;
    Kind m_kind = Kind::operation;
    std::string m_name;
    std::vector<Value> m_values;
};

} // namespace nightjar::headless
