// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/scenario/ObjectReader.h"

#include <array>
#include <charconv>

namespace nightjar::bridge {
namespace {

/// Plain decimal for people: 250, 0.1.
std::string plain(double value) {
    std::array<char, 400> buffer;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed).ptr;
    return {buffer.data(), end};
}

std::string between(std::string_view what, double least, double most) {
    return "must be " + std::string(what) + " from " + plain(least) + " to " + plain(most);
}

} // namespace

void Problem::report(std::string_view path, std::string_view complaint) {
    if (m_sentence)
        return;
    m_sentence = path.empty() ? std::string("the file") : std::string(path);
    *m_sentence += " " + std::string(complaint) + ".";
}

ObjectReader::ObjectReader(const json::JsonValue& value, std::string path, Problem& problem)
    : m_object(value.get<json::JsonValue::Object>()), m_path(std::move(path)), m_problem(problem) {
    if (!m_object)
        problem.report(m_path, "must be an object");
}

std::string ObjectReader::pathOf(std::string_view key) const {
    return m_path.empty() ? std::string(key) : m_path + "." + std::string(key);
}

void ObjectReader::complain(std::string_view key, std::string_view complaint) {
    m_problem.get().report(pathOf(key), complaint);
}

void ObjectReader::finish() const {
    if (!m_object)
        return;
    for (const auto& [key, value] : *m_object) {
        if (!m_asked.contains(key))
            m_problem.get().report(pathOf(key), "is not a known key here");
    }
}

ObjectReader& ObjectReader::require(std::string_view key) {
    if (m_object && !value(key))
        complain(key, "is missing");
    return *this;
}

bool ObjectReader::has(std::string_view key) {
    return value(key) != nullptr;
}

const json::JsonValue* ObjectReader::value(std::string_view key) {
    m_asked.emplace(key);
    if (!m_object)
        return nullptr;
    const auto found = m_object->find(key);
    return found == m_object->end() ? nullptr : &found->second;
}

std::optional<double> ObjectReader::number(std::string_view key, NumberRange range) {
    const auto* member = value(key);
    if (!member)
        return std::nullopt;
    const auto found = member->number();
    if (found && *found >= range.least && *found <= range.most)
        return found;
    complain(key, between("a number", range.least, range.most));
    return std::nullopt;
}

std::optional<std::int64_t> ObjectReader::wholeNumber(std::string_view key, double least, double most) {
    const auto* member = value(key);
    if (!member)
        return std::nullopt;
    const auto found = member->integer<std::int64_t>();
    if (found && static_cast<double>(*found) >= least && static_cast<double>(*found) <= most)
        return found;
    complain(key, between("a whole number", least, most));
    return std::nullopt;
}

std::optional<std::string> ObjectReader::text(std::string_view key) {
    const auto* member = value(key);
    if (!member)
        return std::nullopt;
    if (const auto* found = member->get<std::string>())
        return *found;
    complain(key, "must be text");
    return std::nullopt;
}

std::optional<bool> ObjectReader::flag(std::string_view key) {
    const auto* member = value(key);
    if (!member)
        return std::nullopt;
    if (const auto* found = member->get<bool>())
        return *found;
    complain(key, "must be true or false");
    return std::nullopt;
}

std::optional<std::size_t> ObjectReader::choice(std::string_view key,
                                                std::span<const std::string_view> names) {
    const auto* member = value(key);
    if (!member)
        return std::nullopt;
    const auto* found = member->get<std::string>();
    std::string known;
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (found && *found == names[index])
            return index;
        known += (index == 0 ? "" : ", ") + std::string(names[index]);
    }
    complain(key, "must be one of: " + known);
    return std::nullopt;
}

std::optional<ObjectReader> ObjectReader::object(std::string_view key) {
    const auto* member = value(key);
    if (!member)
        return std::nullopt;
    return ObjectReader(*member, pathOf(key), m_problem);
}

bool ObjectReader::each(std::string_view key,
                        const std::function<void(const json::JsonValue&, const std::string&)>& read) {
    const auto* member = value(key);
    if (!member)
        return false;
    const auto* array = member->get<json::JsonValue::Array>();
    if (!array) {
        complain(key, "must be an array");
        return false;
    }
    for (std::size_t index = 0; index < array->size(); ++index) {
        read((*array)[index], pathOf(key) + "[" + std::to_string(index) + "]");
    }
    return true;
}

bool ObjectReader::eachObject(std::string_view key, const std::function<void(ObjectReader&)>& read) {
    return each(key, [&](const json::JsonValue& element, const std::string& path) {
        ObjectReader reader(element, path, m_problem);
        read(reader);
        reader.finish();
    });
}

} // namespace nightjar::bridge
