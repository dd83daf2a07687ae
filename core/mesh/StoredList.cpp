// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/StoredList.h"

#include "core/json/Encoder.h"
#include "core/mesh/MeshJson.h"

#include <algorithm>
#include <span>

namespace nightjar {
namespace {

constexpr std::string_view opening = "[";
constexpr std::string_view closing = "\n]";

template <class Record>
std::expected<std::string, std::string> inOurLayout(std::span<const Record> records) {
    const json::Encoder encoder(json::DateForm::iso8601, json::Layout::pretty, json::KeyOrder::sorted);
    return encoder.encodeList(records);
}

} // namespace

template <class Record>
StoredList<Record>::StoredList(std::string text) : m_stored(std::move(text)) {
    if (scan())
        return;
    const auto records = json::Decoder(json::DateForm::iso8601).decodeList<Record>(m_stored);
    m_stored = records ? inOurLayout<Record>(*records).value_or("[]") : "[]";
    scan();
}

/// False, with everything as at the start, where the text is not in our layout.
template <class Record>
bool StoredList<Record>::scan() {
    json::LayoutScanner scanner(m_stored, json::schemaOf<Record>());
    while (scanner.next()) {
        m_begins.push_back(scanner.begin());
        m_check.passStored(scanner);
    }
    if (!scanner.isComplete()) {
        m_begins.clear();
        m_check = {};
        return false;
    }
    m_end = scanner.end();
    const std::string_view text = m_stored;
    m_check.endStored(m_begins.empty() ? std::string_view()
                                       : text.substr(m_begins.back(), m_end - m_begins.back()));
    return true;
}

template <class Record>
std::expected<void, std::string> StoredList<Record>::add(const Record& record, std::size_t maximumCount) {
    auto text = inOurLayout(std::span(&record, 1));
    if (!text)
        return std::unexpected(std::move(text.error()));
    m_added.push_back(text->substr(opening.size(), text->size() - opening.size() - closing.size()));
    m_check.add(record);

    const std::size_t count = m_begins.size() + m_added.size();
    m_dropped = std::max(m_dropped, count - std::min(count, maximumCount));
    m_check.drop(m_dropped);
    return {};
}

template <class Record>
std::string StoredList<Record>::takeText() {
    // Made where the stored text lies: fresh memory of that size costs more than everything else here.
    const std::size_t stored = m_begins.size();
    m_stored.resize(m_dropped < stored ? m_end : opening.size());
    if (m_dropped < stored)
        m_stored.erase(opening.size(), m_begins[m_dropped] - opening.size());
    for (std::size_t i = m_dropped - std::min(m_dropped, stored); i < m_added.size(); ++i) {
        if (m_stored.size() > opening.size())
            m_stored += ',';
        m_stored += m_added[i];
    }
    m_stored += closing;
    return std::move(m_stored);
}

template class StoredList<MeshMessage>;
template class StoredList<MeshPosition>;

} // namespace nightjar
