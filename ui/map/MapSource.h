// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Preferences.h"
#include "ui/map/MapTiles.h"

#include <QString>

#include <optional>

/// Where the user wants the maps to come from, kept across restarts. Main thread.
namespace nightjar::MapSource {

/// What was kept. A server address that is unusable counts as none.
[[nodiscard]] MapTileSettings settings(const Preferences& preferences, const QString& cacheFolder,
                                       const QString& version);
/// The name of the server that street pictures come from.
[[nodiscard]] QString serverName(const Preferences& preferences);
void allowStreetMap(Preferences& preferences, MapTiles& tiles, bool isAllowed);

[[nodiscard]] std::optional<QString> localFile(const Preferences& preferences);
/// Kept once the file could be opened; told by `opened` as `MapTiles` does.
void useLocalFile(Preferences& preferences, MapTiles& tiles, const std::optional<QString>& path,
                  MapTiles::Opened opened = {});

} // namespace nightjar::MapSource
