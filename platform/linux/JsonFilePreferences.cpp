// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/JsonFilePreferences.h"

#include "core/base/AtomicFile.h"
#include "core/base/Text.h"

#include <QByteArray>

#include <cmath>

namespace nightjar {
namespace {

namespace fs = std::filesystem;
using json::JsonValue;

constexpr std::chrono::milliseconds writeDelay{200};
constexpr std::string_view dataMember = "data";

/// Far more than settings ever need; what is larger is no file of ours and is not read into memory.
constexpr std::uintmax_t largestFile = 16 * 1024 * 1024;

std::optional<JsonValue::Object> readObject(const fs::path& file) {
    std::error_code error;
    if (fs::file_size(file, error) > largestFile || error)
        return std::nullopt;
    const auto bytes = readWholeFile(file);
    if (!bytes)
        return std::nullopt;
    const auto value = JsonValue::parse(*bytes);
    const auto* object = value ? value->get<JsonValue::Object>() : nullptr;
    return object ? std::optional(*object) : std::nullopt;
}

} // namespace

JsonFilePreferences::JsonFilePreferences(std::optional<fs::path> file, Scheduler& scheduler)
    : m_file(std::move(file)), m_scheduler(scheduler) {
    if (m_file)
        load();
}

JsonFilePreferences::~JsonFilePreferences() {
    flush();
}

void JsonFilePreferences::load() {
    std::error_code error;
    // A settings file that is a link into a folder of the user's own stays one.
    if (auto target = fs::weakly_canonical(*m_file, error); !error)
        m_file = std::move(target);
    if (!fs::exists(fs::symlink_status(*m_file, error)))
        return;
    if (auto values = readObject(*m_file))
        m_values = std::move(*values);
    else
        setAside();
}

/// Keeps what cannot be read: the next write would replace it.
void JsonFilePreferences::setAside() {
    const auto name = m_file->filename().string();
    const auto copy = fs::path(m_file->string() + ".damaged");
    std::error_code error;
    fs::rename(*m_file, copy, error);
    if (!error) {
        m_damage = "The settings file “" + name + "” could not be read. It was kept as “" +
                   copy.filename().string() + "”, and the settings start afresh.";
        return;
    }
    m_damage =
        "The settings file “" + name + "” could not be read. Settings are not saved until it is removed.";
    m_file.reset();
}

const JsonValue* JsonFilePreferences::find(std::string_view key) const {
    const auto found = m_values.find(key);
    return found == m_values.end() ? nullptr : &found->second;
}

std::optional<bool> JsonFilePreferences::boolean(std::string_view key) const {
    const auto* value = find(key);
    const auto* truth = value ? value->get<bool>() : nullptr;
    return truth ? std::optional(*truth) : std::nullopt;
}

std::optional<std::string> JsonFilePreferences::string(std::string_view key) const {
    const auto* value = find(key);
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<double> JsonFilePreferences::number(std::string_view key) const {
    const auto* value = find(key);
    return value ? value->number() : std::nullopt;
}

std::optional<std::int64_t> JsonFilePreferences::integer(std::string_view key) const {
    const auto* value = find(key);
    return value ? value->integer<std::int64_t>() : std::nullopt;
}

std::optional<Preferences::Dictionary> JsonFilePreferences::dictionary(std::string_view key) const {
    const auto* value = find(key);
    const auto* object = value ? value->get<JsonValue::Object>() : nullptr;
    if (!object)
        return std::nullopt;
    Dictionary result;
    for (const auto& [name, member] : *object) {
        const auto* text = member.get<std::string>();
        if (!text)
            return std::nullopt;
        result.emplace(name, *text);
    }
    return result;
}

std::optional<Preferences::Data> JsonFilePreferences::data(std::string_view key) const {
    const auto* value = find(key);
    const auto* object = value ? value->get<JsonValue::Object>() : nullptr;
    if (!object || object->size() != 1)
        return std::nullopt;
    const auto* member = value->member(dataMember);
    const auto* text = member ? member->get<std::string>() : nullptr;
    if (!text)
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(QByteArray::fromStdString(*text),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional(Data((*decoded).begin(), (*decoded).end())) : std::nullopt;
}

void JsonFilePreferences::setBoolean(std::string_view key, bool value) {
    set(key, value);
}

void JsonFilePreferences::setString(std::string_view key, std::string_view value) {
    set(key, std::string(value));
}

void JsonFilePreferences::setNumber(std::string_view key, double value) {
    if (std::isfinite(value))
        set(key, value);
    else
        remove(key);
}

void JsonFilePreferences::setInteger(std::string_view key, std::int64_t value) {
    set(key, value);
}

void JsonFilePreferences::setDictionary(std::string_view key, const Dictionary& value) {
    JsonValue::Object object;
    for (const auto& [name, text] : value)
        object.emplace(name, text);
    set(key, std::move(object));
}

void JsonFilePreferences::setData(std::string_view key, const Data& value) {
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(value.data()),
                                               static_cast<qsizetype>(value.size()));
    set(key, JsonValue::Object{{std::string(dataMember), bytes.toBase64().toStdString()}});
}

void JsonFilePreferences::remove(std::string_view key) {
    const auto found = m_values.find(key);
    if (found == m_values.end())
        return;
    m_values.erase(found);
    scheduleWrite();
}

void JsonFilePreferences::set(std::string_view key, JsonValue value) {
    const auto [place, added] = m_values.try_emplace(std::string(key));
    if (!added && place->second == value)
        return;
    place->second = std::move(value);
    scheduleWrite();
}

void JsonFilePreferences::scheduleWrite() {
    m_changed = true;
    if (!m_file || m_writeTimer)
        return;
    m_writeTimer = m_scheduler.after(writeDelay, [this] { flush(); });
}

void JsonFilePreferences::flush() {
    m_writeTimer.cancel();
    if (!m_file || !m_changed)
        return;
    const auto written = replaceFile(*m_file, fileText());
    m_changed = !written;
    m_writeFailure = written ? std::nullopt : std::optional(written.error());
}

std::string JsonFilePreferences::fileText() const {
    std::string text;
    json::JsonWriter writer(text, json::Layout::pretty);
    writer.beginObject();
    for (const auto& [key, value] : m_values) {
        writer.key(key);
        // With a fraction, so that 1.0 is no integer when it is read back.
        if (const auto* real = value.get<double>())
            writer.raw(shortestText(*real));
        else
            value.write(writer);
    }
    writer.endObject();
    return text += '\n';
}

std::optional<std::string> JsonFilePreferences::problem() const {
    return m_damage ? m_damage : m_writeFailure;
}

} // namespace nightjar
