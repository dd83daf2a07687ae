// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/SystemSound.h"
#include "platform/linux/SoundPlayer.h"

#include <filesystem>

namespace nightjar {

/// The sounds that come with the program, from files of a folder. Main thread.
class BundledSounds final : public SystemSound {
public:
    BundledSounds(SoundPlayer& player, std::filesystem::path folder)
        : m_player(player), m_folder(std::move(folder)) {}

    void play(std::string_view name) override;

    /// Where they are installed, seen from the folder of the program.
    [[nodiscard]] static std::filesystem::path folderBeside(const std::filesystem::path& programFolder);

private:
    SoundPlayer& m_player;
    std::filesystem::path m_folder;
};

} // namespace nightjar
