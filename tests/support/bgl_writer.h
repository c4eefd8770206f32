// Scenery files for tests, byte by byte from the format: header, section table, one sub-section a section,
// airport records with helipads and parking positions.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace skl::test {

using Bytes = std::string;

inline void put(Bytes& out, uint64_t value, int size) {
    for (int i = 0; i < size; ++i) out += static_cast<char>(value >> (8 * i));
}
inline void putReal(Bytes& out, float value) {
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    put(out, bits, 4);
}
inline uint32_t bglLongitude(double degrees) {
    return static_cast<uint32_t>(std::llround((degrees + 180) / 360 * 805306368.0));
}
inline uint32_t bglLatitude(double degrees) {
    return static_cast<uint32_t>(std::llround((90 - degrees) / 180 * 536870912.0));
}

/// Four characters to the number that the record holds.
inline uint32_t bglCode(const std::string& text) {
    uint32_t value = 0;
    for (const char c : text) {
        uint32_t digit = 0;
        if (c >= '0' && c <= '9') digit = 2 + static_cast<uint32_t>(c - '0');
        if (c >= 'A' && c <= 'Z') digit = 12 + static_cast<uint32_t>(c - 'A');
        value = value * 38 + digit;
    }
    return value << 5 | 1;
}

/// A record: id, size with the head, body.
inline Bytes bglRecord(uint16_t id, const Bytes& body) {
    Bytes out;
    put(out, id, 2);
    put(out, body.size() + 6, 4);
    return out + body;
}

struct BglParking {
    uint32_t name = 10, number = 1, type = 9;
    float radius = 20, heading = 90;
    double lat = 51, lon = 0.5;
    int airlines = 0;
};

inline Bytes bglHelipad(double lat, double lon, float size) {
    Bytes body(6, '\0');  // up to byte 12
    put(body, bglLongitude(lon), 4);
    put(body, bglLatitude(lat), 4);
    body += Bytes(8, '\0');
    putReal(body, size);
    body += Bytes(4, '\0');
    return bglRecord(38, body);
}

inline Bytes bglParkings(const std::vector<BglParking>& stands) {
    Bytes body;
    put(body, stands.size(), 2);
    for (const BglParking& stand : stands) {
        put(body,
            stand.name | stand.type << 8 | stand.number << 12 | static_cast<uint32_t>(stand.airlines) << 24,
            4);
        putReal(body, stand.radius);
        putReal(body, stand.heading);
        body += Bytes(16, '\0');
        put(body, bglLongitude(stand.lon), 4);
        put(body, bglLatitude(stand.lat), 4);
        body += Bytes(20, '\0') + Bytes(4 * static_cast<size_t>(stand.airlines), 'A');
    }
    return bglRecord(231, body);
}

inline Bytes bglAirport(const std::string& code, uint32_t millimeters, const Bytes& parts) {
    Bytes body(14, '\0');  // up to byte 20
    put(body, millimeters, 4);
    body += Bytes(16, '\0');
    put(body, bglCode(code), 4);
    body += Bytes(24, '\0');
    return bglRecord(86, body + parts);
}

struct BglSection {
    uint32_t type = 3;
    Bytes records;
    uint32_t entrySize = 0;  ///< 0x10000: entries of 20 bytes
};

inline Bytes bglFile(const std::vector<BglSection>& sections) {
    Bytes head(4, 'x');
    put(head, 56, 4);
    head += Bytes(12, '\0');
    put(head, sections.size(), 4);
    head += Bytes(32, '\0');
    size_t offset = 56 + 20 * sections.size();
    Bytes entries, records;
    for (const BglSection& section : sections) {
        put(head, section.type, 4);
        put(head, section.entrySize, 4);
        put(head, 1, 4);
        put(head, offset, 4);
        put(head, 16, 4);
        offset += 16;
    }
    for (const BglSection& section : sections) {
        entries += Bytes(8, '\0');
        put(entries, offset, 4);
        put(entries, section.records.size(), 4);
        offset += section.records.size();
        records += section.records;
    }
    return head + entries + records;
}

inline Bytes bglFile(const Bytes& airports) {
    return bglFile({BglSection{.records = airports}});
}

}  // namespace skl::test
