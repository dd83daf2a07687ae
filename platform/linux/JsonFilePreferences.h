// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/JsonValue.h"
#include "platform/Preferences.h"
#include "platform/Scheduler.h"

#include <filesystem>

namespace nightjar {

/// The user's settings in one JSON object in a file. Main thread.
///
/// Data is kept as {"data": "<base64>"}. The one who reads says which type is meant, so a dictionary whose
/// only key is "data" stays one. Whatever else the file holds is kept. Changes are written together, 200 ms
/// after the first of them, and at the latest when the object goes; a write that failed is tried again with
/// the next change.
class JsonFilePreferences final : public Preferences {
public:
    /// Reads the file. Without one the settings live in memory only.
    JsonFilePreferences(std::optional<std::filesystem::path> file, Scheduler& scheduler);
    ~JsonFilePreferences() override;
    JsonFilePreferences(const JsonFilePreferences&) = delete;
    JsonFilePreferences& operator=(const JsonFilePreferences&) = delete;

    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
    [[nodiscard]] std::optional<double> number(std::string_view key) const override;
    [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override;
    [[nodiscard]] std::optional<Dictionary> dictionary(std::string_view key) const override;
    [[nodiscard]] std::optional<Data> data(std::string_view key) const override;

    void setBoolean(std::string_view key, bool value) override;
    void setString(std::string_view key, std::string_view value) override;
    /// A number that is not finite has no JSON form: it removes the value.
    void setNumber(std::string_view key, double value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void setDictionary(std::string_view key, const Dictionary& value) override;
    void setData(std::string_view key, const Data& value) override;
    void remove(std::string_view key) override;

    /// Writes what has changed, now.
    void flush();

    /// A sentence for the user when the file was found damaged, or when the settings could not be saved
    /// lately.
    [[nodiscard]] std::optional<std::string> problem() const;

private:
    [[nodiscard]] const json::JsonValue* find(std::string_view key) const;
    void set(std::string_view key, json::JsonValue value);
    void scheduleWrite();
    void load();
    void setAside();
    [[nodiscard]] std::string fileText() const;

    std::optional<std::filesystem::path> m_file;
    Scheduler& m_scheduler;
    json::JsonValue::Object m_values;
    Timer m_writeTimer;
    bool m_changed = false;
    std::optional<std::string> m_damage;
    std::optional<std::string> m_writeFailure;
};

} // namespace nightjar
