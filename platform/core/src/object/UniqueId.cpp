// SPDX-License-Identifier: MIT
#include <helvantine/core/UniqueId.h>

#if defined(__linux__)
#include <sys/random.h>
#endif

#include <random>

namespace helvantine
{

namespace
{

constexpr char s_digits[] = "0123456789ABCDEF";

/// The shape of the text: how many bytes stand between the hyphens.
constexpr int s_groups[] = {4, 2, 2, 2, 6};

int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

/// Reads the sixteen bytes in the order of the text. Never looks behind the first wrong character.
bool readBytes(const char* text, std::uint8_t (&bytes)[16])
{
    std::uint8_t* next = bytes;
    for (int group = 0; group < 5; ++group) {
        if (group > 0 && *text++ != '-')
            return false;
        for (int i = 0; i < s_groups[group]; ++i, text += 2) {
            const int high = digitValue(text[0]);
            const int low = high < 0 ? -1 : digitValue(text[1]);
            if (low < 0)
                return false;
            *next++ = static_cast<std::uint8_t>(high * 16 + low);
        }
    }
    return *text == '\0';
}

void fillRandom(UniqueId& id)
{
#if defined(__linux__)
    if (getrandom(&id, sizeof(id), 0) == static_cast<ssize_t>(sizeof(id)))
        return;
#endif
    std::random_device device;
    std::uint32_t words[4];
    for (std::uint32_t& word : words)
        word = device();
    std::memcpy(&id, words, sizeof(id));
}

} // namespace

UniqueId stringToUniqueId(const char* text)
{
    std::uint8_t bytes[16];
    if (!text || !readBytes(text, bytes))
        return {};
    UniqueId id;
    id.data1 = std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 |
               bytes[3];
    id.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    id.data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    std::memcpy(id.data4, bytes + 8, sizeof(id.data4));
    return id;
}

void uniqueIdToString(const UniqueId& id, char (&text)[37])
{
    std::uint8_t bytes[16] = {std::uint8_t(id.data1 >> 24), std::uint8_t(id.data1 >> 16),
                              std::uint8_t(id.data1 >> 8),  std::uint8_t(id.data1),
                              std::uint8_t(id.data2 >> 8),  std::uint8_t(id.data2),
                              std::uint8_t(id.data3 >> 8),  std::uint8_t(id.data3)};
    std::memcpy(bytes + 8, id.data4, sizeof(id.data4));

    const std::uint8_t* next = bytes;
    char* out = text;
    for (int group = 0; group < 5; ++group) {
        if (group > 0)
            *out++ = '-';
        for (int i = 0; i < s_groups[group]; ++i, ++next) {
            *out++ = s_digits[*next >> 4];
            *out++ = s_digits[*next & 15];
        }
    }
    *out = '\0';
}

std::string uniqueIdToString(const UniqueId& id)
{
    char text[37];
    uniqueIdToString(id, text);
    return text;
}

UniqueId generateUniqueId()
{
    UniqueId id;
    fillRandom(id);
    // The marks of a random id; they also keep it from being all zero.
    id.data3 = static_cast<std::uint16_t>((id.data3 & 0x0FFF) | 0x4000);
    id.data4[0] = static_cast<std::uint8_t>((id.data4[0] & 0x3F) | 0x80);
    return id;
}

} // namespace helvantine
