// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BundledSounds.h"

namespace nightjar {

void BundledSounds::play(std::string_view name) {
    if (name == "Tink")
        m_player.play(m_folder / "tink.wav");
}

std::filesystem::path BundledSounds::folderBeside(const std::filesystem::path& programFolder) {
    return programFolder.parent_path() / "share" / "nightjar" / "sounds";
}

} // namespace nightjar
