// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/map/MapSource.h"

#include <QUrl>

#include <utility>

namespace nightjar::MapSource {

namespace {

constexpr std::string_view allowedKey = "map.streetMap";
constexpr std::string_view serverKey = "map.tileServer";
constexpr std::string_view fileKey = "map.localFile";

QString serverTemplate(const Preferences& preferences) {
    const auto kept = QString::fromStdString(preferences.string(serverKey).value_or(""));
    return kept.isEmpty() ? MapTileSettings{}.streetTemplate : kept;
}

} // namespace

MapTileSettings settings(const Preferences& preferences, const QString& cacheFolder, const QString& version) {
    MapTileSettings settings;
    const QString kept = serverTemplate(preferences);
    if (kept != settings.streetTemplate) {
        settings.streetTemplate = kept;
        settings.streetAttribution = serverName(preferences);
    }
    settings.userAgent = QStringLiteral("Nightjar/%1 desktop").arg(version);
    settings.isStreetMapEnabled = preferences.boolean(allowedKey).value_or(false);
    settings.cacheFolder = cacheFolder;
    return settings;
}

QString serverName(const Preferences& preferences) {
    QString address = serverTemplate(preferences);
    for (const auto* part : {"{z}", "{x}", "{y}"})
        address.replace(QLatin1String(part), QStringLiteral("0"));
    return QUrl(address).host();
}

void allowStreetMap(Preferences& preferences, MapTiles& tiles, bool isAllowed) {
    preferences.setBoolean(allowedKey, isAllowed);
    tiles.setStreetMapEnabled(isAllowed);
}

std::optional<QString> localFile(const Preferences& preferences) {
    const auto kept = preferences.string(fileKey);
    return kept && !kept->empty() ? std::optional(QString::fromStdString(*kept)) : std::nullopt;
}

void useLocalFile(Preferences& preferences, MapTiles& tiles, const std::optional<QString>& path,
                  MapTiles::Opened opened) {
    tiles.setLocalFile(path, [&preferences, path, opened = std::move(opened)](const auto& result) {
        if (result && path)
            preferences.setString(fileKey, path->toStdString());
        else if (result)
            preferences.remove(fileKey);
        if (opened)
            opened(result);
    });
}

} // namespace nightjar::MapSource
