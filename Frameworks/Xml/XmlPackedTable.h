// A name table, packed into one text at compile time: buckets by the sum of the name's bytes, in each bucket one record
// per row: digits of the name's length, digits of its number, the name. The first of two equal names wins. Any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// One row of a table.
struct XmlTableRow {
    std::string_view name;
    std::uint32_t number;
};

// Bytes of the text; `digits` of both numbers together.
constexpr std::size_t XmlTableTextSize(const XmlTableRow* rows, std::size_t count, std::size_t digits) {
    std::size_t size = 0;
    for (std::size_t row = 0; row < count; ++row) {
        size += digits + rows[row].name.size();
    }
    return size;
}

template <std::size_t Buckets, std::size_t LengthDigits, std::size_t NumberDigits, std::size_t TextSize>
class XmlPackedTable {
public:
    constexpr XmlPackedTable(const XmlTableRow* rows, std::size_t count) {
        for (std::size_t row = 0; row < count; ++row) {
            m_ends[Bucket(rows[row].name)] += LengthDigits + NumberDigits + rows[row].name.size();
        }
        std::array<std::size_t, Buckets> places{};
        for (std::size_t bucket = 1; bucket < Buckets; ++bucket) {
            places[bucket] = m_ends[bucket - 1];
            m_ends[bucket] += m_ends[bucket - 1];
        }
        for (std::size_t row = 0; row < count; ++row) {
            std::size_t& place = places[Bucket(rows[row].name)];
            WriteNumber(place, LengthDigits, rows[row].name.size());
            WriteNumber(place + LengthDigits, NumberDigits, rows[row].number);
            place += LengthDigits + NumberDigits;
            for (const char byte : rows[row].name) {
                m_text[place++] = byte;
            }
        }
    }

    // 0 for an unknown name. The name is in lower case.
    constexpr std::uint32_t Find(std::string_view name) const {
        const std::size_t bucket = Bucket(name);
        const std::size_t end = m_ends[bucket];
        for (std::size_t place = bucket == 0 ? 0 : m_ends[bucket - 1]; place < end;) {
            const std::size_t length = ReadNumber(place, LengthDigits);
            const std::size_t start = place + LengthDigits + NumberDigits;
            if (std::string_view(m_text.data() + start, length) == name) {
                return ReadNumber(place + LengthDigits, NumberDigits);
            }
            place = start + length;
        }
        return 0;
    }

private:
    static constexpr std::size_t Bucket(std::string_view name) {
        std::size_t sum = 0;
        for (const char byte : name) {
            sum += static_cast<unsigned char>(byte);
        }
        return sum % Buckets;
    }

    constexpr void WriteNumber(std::size_t place, std::size_t digits, std::size_t number) {
        for (std::size_t digit = digits; digit-- > 0; number /= 10) {
            m_text[place + digit] = static_cast<char>('0' + number % 10);
        }
    }

    constexpr std::uint32_t ReadNumber(std::size_t place, std::size_t digits) const {
        std::uint32_t number = 0;
        for (std::size_t digit = 0; digit < digits; ++digit) {
            number = number * 10 + static_cast<std::uint32_t>(m_text[place + digit] - '0');
        }
        return number;
    }

    std::array<char, TextSize> m_text{};
    std::array<std::size_t, Buckets> m_ends{};
};
