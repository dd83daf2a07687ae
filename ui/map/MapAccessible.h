// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace nightjar {

class MapView;

/// Lets readers of the screen see the markers of every map as its children, by name and place, and choose
/// them.
void installMapAccessibility();

/// Told by the map when there are other markers than before.
void tellMarkersChanged(MapView& map);
/// Told by the map when the keys have reached a marker.
void tellMarkerFocused(MapView& map);

} // namespace nightjar
