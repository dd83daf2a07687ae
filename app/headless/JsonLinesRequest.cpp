// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/JsonLinesRequest.h"

#include "app/headless/RawJson.h"

#include <array>
#include <utility>

namespace nightjar::headless {
namespace {

using Kind = JsonLinesRequest::Kind;

constexpr std::array<std::pair<std::string_view, Kind>, 3> kinds{
    {{"operation", Kind::operation}, {"set", Kind::set}, {"get", Kind::get}}};

/// As it was written; a key that hides behind escapes leaves only the parsed value.
std::string textOf(const json::JsonValue& value, std::optional<std::string_view> raw) {
    return raw ? std::string(*raw) : value.text();
}

} // namespace

std::expected<JsonLinesRequest, JsonLinesRequest::Refusal> JsonLinesRequest::parse(std::string_view line) {
    JsonLinesRequest request;
    const auto refused = [&](std::string reason) {
        return std::unexpected(Refusal{std::move(request.m_id), std::move(reason)});
    };

    const auto root = json::JsonValue::parse(line);
    if (!root)
        return refused("The line is not JSON.");
    if (!root->get<json::JsonValue::Object>())
        return refused("The line is not a JSON object.");
    if (const auto* id = root->member("id"))
        request.m_id = textOf(*id, rawMember(line, "id"));

    const auto* controller = root->member("controller");
    if (!controller)
        return refused("The line names no \"controller\".");
    if (!controller->get<std::string>())
        return refused("\"controller\" takes a text.");
    request.m_controller = *controller->get<std::string>();

    const json::JsonValue* name = nullptr;
    for (const auto& [key, kind] : kinds) {
        const auto* found = root->member(key);
        if (!found)
            continue;
        if (name)
            return refused("The line must hold only one of \"operation\", \"set\" and \"get\".");
        if (!found->get<std::string>())
            return refused('"' + std::string(key) + "\" takes a text.");
        name = found;
        request.m_kind = kind;
    }
    if (!name)
        return refused("The line holds none of \"operation\", \"set\" and \"get\".");
    request.m_name = *name->get<std::string>();

    if (request.m_kind == Kind::set) {
        const auto* value = root->member("value");
        if (!value)
            return refused("\"set\" needs a \"value\".");
        request.m_values.push_back({*value, textOf(*value, rawMember(line, "value"))});
    }
    if (const auto* arguments = root->member("arguments"); arguments && request.m_kind == Kind::operation) {
        const auto* list = arguments->get<json::JsonValue::Array>();
        if (!list)
            return refused("\"arguments\" takes a list.");
        const auto text = textOf(*arguments, rawMember(line, "arguments"));
        const auto raw = rawElements(text);
        for (std::size_t i = 0; i < list->size() && i < raw.size(); ++i) {
            request.m_values.push_back({(*list)[i], std::string(raw[i])});
        }
    }
    return request;
}

std::vector<Argument> JsonLinesRequest::arguments() const {
    std::vector<Argument> arguments;
    for (const Value& value : m_values)
        arguments.push_back({value.value, value.text});
    return arguments;
}

} // namespace nightjar::headless
