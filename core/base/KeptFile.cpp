// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/KeptFile.h"

#include "core/base/AtomicFile.h"

#include <system_error>
#include <utility>

namespace nightjar {

std::optional<std::string> KeptFile::read() const {
    if (!m_path)
        return std::nullopt;
    auto text = readWholeFile(*m_path);
    return text ? std::optional(*std::move(text)) : std::nullopt;
}

void KeptFile::noteDamaged() {
    std::error_code ignored;
    m_isDamaged = m_path && std::filesystem::exists(*m_path, ignored);
}

std::expected<void, std::string> KeptFile::replace(std::string_view bytes) {
    if (!m_path)
        return std::unexpected("There is no home folder.");
    if (std::exchange(m_isDamaged, false)) {
        auto aside = *m_path;
        aside += ".damaged";
        std::error_code ignored;
        std::filesystem::rename(*m_path, aside, ignored);
    }
    return replaceFile(*m_path, bytes);
}

} // namespace nightjar
