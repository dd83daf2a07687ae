// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/desktop/SentMessage.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <stdexcept>

namespace nightjar {
namespace {

using Bytes = std::vector<std::uint8_t>;

class Reader {
public:
    explicit Reader(std::string_view hexadecimal) {
        const auto raw =
            QByteArray::fromHex(QByteArray(hexadecimal.data(), static_cast<qsizetype>(hexadecimal.size())));
        m_bytes.assign(raw.begin(), raw.end());
    }
    std::uint8_t byte() { return take(1)[0]; }
    Bytes take(std::size_t count) {
        if (m_bytes.size() - m_read < count)
            throw std::runtime_error("the message ends too early");
        const auto begin = m_bytes.begin() + static_cast<std::ptrdiff_t>(m_read);
        m_read += count;
        return {begin, begin + static_cast<std::ptrdiff_t>(count)};
    }
    Bytes rest() { return take(m_bytes.size() - m_read); }

private:
    Bytes m_bytes;
    std::size_t m_read = 0;
};

std::string readNumber(Reader& reader) {
    constexpr std::uint8_t international = 0x91;
    const std::size_t digits = reader.byte();
    std::string number = reader.byte() == international ? "+" : "";
    for (const auto pair : reader.take((digits + 1) / 2)) {
        number += static_cast<char>('0' + (pair & 0x0f));
        if (pair >> 4 != 0x0f)
            number += static_cast<char>('0' + (pair >> 4));
    }
    return number;
}

std::string readUcs2(const Bytes& bytes) {
    QString text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        text += QChar(static_cast<char16_t>(bytes[i] << 8 | bytes[i + 1]));
    return text.toStdString();
}

/// Seven bits each, the lowest first, from the bit where the header's padding ends.
std::string readPacked(const Bytes& bytes, std::size_t firstSeptet, std::size_t septets) {
    std::string text;
    for (std::size_t i = firstSeptet; i < septets; ++i) {
        const std::size_t bit = i * 7;
        const unsigned low = bytes.at(bit / 8);
        const unsigned high = bit / 8 + 1 < bytes.size() ? bytes[bit / 8 + 1] : 0;
        text += static_cast<char>((low | high << 8) >> bit % 8 & 0x7f);
    }
    return text;
}

} // namespace

SentMessage SentMessage::read(std::string_view hexadecimal) {
    Reader reader(hexadecimal);
    reader.take(reader.byte()); // the service centre
    const auto kind = reader.byte();
    const bool hasHeader = (kind & 0x40) != 0;
    const bool hasValidity = (kind & 0x18) != 0;
    if ((kind & 0x03) != 1)
        throw std::runtime_error("not a message to be sent");
    reader.byte(); // reference
    SentMessage message;
    message.number = readNumber(reader);
    reader.byte(); // protocol
    const auto coding = reader.byte();
    if (hasValidity)
        reader.take((kind & 0x18) == 0x10 ? 1 : 7);
    const std::size_t length = reader.byte();
    auto data = reader.rest();

    std::size_t header = 0;
    if (hasHeader) {
        header = data.at(0) + 1u;
        // One element: parts of one message, with a reference of 8 bits.
        if (data.at(1) == 0 && data.at(2) == 3) {
            message.parts = data.at(4);
            message.part = data.at(5);
        }
    }
    if ((coding & 0x0c) == 0x08)
        message.text = readUcs2({data.begin() + static_cast<std::ptrdiff_t>(header), data.end()});
    else if ((coding & 0x0c) == 0)
        message.text = readPacked(data, (header * 8 + 6) / 7, length);
    else
        throw std::runtime_error("not a text");
    return message;
}

} // namespace nightjar
