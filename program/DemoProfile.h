// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

/// A computer for the demo: a temporary folder with an empty data folder and one serial device, a scenario
/// file that the bridge plays as a radio. The folder goes with the object.
class DemoProfile final : public HostEnvironment {
public:
    /// A sentence where the folder cannot be made. `bridge` is the bridge program to use.
    [[nodiscard]] static std::expected<DemoProfile, std::string>
    make(std::string_view scenario, std::optional<std::filesystem::path> bridge);
    ~DemoProfile() override;
    DemoProfile(DemoProfile&& other) noexcept;
    DemoProfile& operator=(DemoProfile&&) = delete;

    /// The path of the serial device.
    [[nodiscard]] std::string port() const;

    [[nodiscard]] std::optional<std::string> environmentVariable(const std::string& name) const override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportFolder() const override;
    [[nodiscard]] std::optional<std::filesystem::path> bundleParentFolder() const override {
        return std::nullopt;
    }
    [[nodiscard]] bool isExecutableFile(const std::filesystem::path& path) const override;
    [[nodiscard]] bool exists(const std::filesystem::path& path) const override;
    [[nodiscard]] std::filesystem::path deviceFolder() const override;
    [[nodiscard]] std::vector<std::string> deviceNames() const override;

private:
    DemoProfile(std::filesystem::path folder, std::optional<std::filesystem::path> bridge)
        : m_folder(std::move(folder)), m_bridge(std::move(bridge)) {}

    std::filesystem::path m_folder; ///< empty once moved from
    std::optional<std::filesystem::path> m_bridge;
};

} // namespace nightjar
