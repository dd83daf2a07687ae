// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/map/TileKey.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <expected>
#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace nightjar {

/// A map in one file, in the MBTiles format: an SQLite data base of picture tiles. It is only read, and
/// distrusted: no query runs for long and nothing of the file is executed. Used by one thread at a time.
class MbtilesFile {
public:
    /// The error is one sentence.
    [[nodiscard]] static std::expected<std::unique_ptr<MbtilesFile>, QString> open(const QString& path);
    ~MbtilesFile();
    MbtilesFile(const MbtilesFile&) = delete;
    MbtilesFile& operator=(const MbtilesFile&) = delete;

    [[nodiscard]] int minimumZoom() const { return m_minimumZoom; }
    [[nodiscard]] int maximumZoom() const { return m_maximumZoom; }
    /// Whom the file names; plain text, short, may be empty.
    [[nodiscard]] const QString& attribution() const { return m_attribution; }

    /// As it is stored; absent where the file has none.
    [[nodiscard]] std::optional<QByteArray> tile(const TileKey& key);

private:
    MbtilesFile() = default;

    [[nodiscard]] bool openDatabase(const QString& path);
    [[nodiscard]] std::optional<QString> readDescription();
    [[nodiscard]] std::optional<QByteArray> value(const char* query, const char* argument = nullptr);
    [[nodiscard]] int step(sqlite3_stmt* statement);
    static int isOverdue(void* self);

    sqlite3* m_database = nullptr;
    sqlite3_stmt* m_tile = nullptr;
    std::chrono::steady_clock::time_point m_deadline;
    int m_minimumZoom = 0;
    int m_maximumZoom = 0;
    QString m_attribution;
};

} // namespace nightjar
