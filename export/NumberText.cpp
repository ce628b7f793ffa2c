#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace numbertext {
namespace {

// Lays out `count` significant digits (no leading or trailing zeros), the
// first of them at 10^exponent, the way Qt's 'g' format does in its
// shortest mode: plain decimals unless the exponent form is shorter.
char* layOut(char* out, bool negative, const char* digits, int count, int exponent)
{
    if (negative)
        *out++ = '-';
    const int point = exponent + 1;  // digits before the decimal point
    int cutoff = 6;
    if (point > 0) {
        cutoff = count + 4;
        cutoff += point > 100 ? 2 : 1;  // the exponent's digits
        if (count > point)
            ++cutoff;
    }
    if (point != count && (point <= -4 || point > cutoff)) {
        *out++ = digits[0];
        if (count > 1) {
            *out++ = '.';
            std::memcpy(out, digits + 1, size_t(count - 1));
            out += count - 1;
        }
        *out++ = 'e';
        *out++ = exponent < 0 ? '-' : '+';
        const int magnitude = std::abs(exponent);
        if (magnitude < 10)
            *out++ = '0';
        return std::to_chars(out, out + 8, magnitude).ptr;
    }
    if (point <= 0) {
        *out++ = '0';
        *out++ = '.';
        std::memset(out, '0', size_t(-point));
        out += -point;
        std::memcpy(out, digits, size_t(count));
        return out + count;
    }
    if (point >= count) {
        std::memcpy(out, digits, size_t(count));
        out += count;
        std::memset(out, '0', size_t(point - count));
        return out + (point - count);
    }
    std::memcpy(out, digits, size_t(point));
    out += point;
    *out++ = '.';
    std::memcpy(out, digits + point, size_t(count - point));
    return out + (count - point);
}

constexpr int kMaxDecimals = 10;
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
constexpr uint64_t kWholePowersOfTen[] = {
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000, 10000000000,
    100000000000, 1000000000000, 10000000000000, 100000000000000, 1000000000000000};

// n / 10^decimals with 1e-4 <= value < 1e5, where Qt's layout is always
// plain: the whole part, then the fraction without trailing zeros. Copies
// are a fixed 16 bytes so they stay inline; `out` has kMaxLength of room.
char* writePlain(char* out, bool negative, uint64_t n, int decimals)
{
    char digits[kMaxLength] = {};
    int count = int(std::to_chars(digits, digits + 24, n).ptr - digits);
    while (decimals > 0 && digits[count - 1] == '0') {
        --count;
        --decimals;
    }
    if (negative)
        *out++ = '-';
    const int whole = count - decimals;
    if (whole > 0) {
        std::memcpy(out, digits, 16);
        out += whole;
    } else {
        std::memcpy(out, "0.00000000000000", 16);
        out += 2 - whole;
    }
    if (decimals == 0)
        return out;
    const int first = whole > 0 ? whole : 0;
    if (whole > 0)
        *out++ = '.';
    std::memcpy(out, digits + first, 16);
    return out + (count - first);
}

// The value |n| / 10^decimals, in any layout.
char* layOutScaled(char* out, bool negative, uint64_t n, int decimals)
{
    // 1e-4 <= n / 10^decimals < 1e5
    if (n >= kWholePowersOfTen[decimals > 4 ? decimals - 4 : 0] && n < kWholePowersOfTen[decimals + 5])
        return writePlain(out, negative, n, decimals);
    char digits[24];
    int count = int(std::to_chars(digits, digits + sizeof digits, n).ptr - digits);
    const int exponent = count - 1 - decimals;
    while (digits[count - 1] == '0')
        --count;
    return layOut(out, negative, digits, count, exponent);
}

// Distances in whole millimetres given in metres: for a double v that is
// exactly the nearest double to n / 10^d, and whose ulp is below 10^-d, no
// decimal with fewer digits rounds to v (it would lie on a coarser grid, at
// least 10^-d away, beyond v's rounding interval), so n / 10^d is v's
// shortest text. The test is exact: n / 10^d in double arithmetic is the
// correctly rounded quotient.
bool writeOnGrid(char*& out, double value, double scale, int decimals, double limit)
{
    if (!(std::abs(value) < limit))
        return false;
    const double scaled = std::nearbyint(value * scale);
    if (scaled / scale != value)
        return false;
    out = layOutScaled(out, value < 0, uint64_t(std::abs(scaled)), decimals);
    return true;
}

// A float v between 1e-4 and 1e5 has a shortest text with d decimals for
// the first d at which the decimal nearest to v, n / 10^d, reads back as v:
// a text with fewer decimals lies on a coarser grid that was already tried,
// and of the texts with d decimals the shortest-digits rule takes the one
// nearest to v. Starting at d = 2 is sound because v's ulp is below 10^-2
// there, so at most one such decimal reads back and any shorter text would
// be that same one with its trailing zeros. "Reads back" is tested without
// dividing: |n - v * 10^d| against half an ulp of v times 10^d, every step
// exact in double. Powers of two, whose rounding interval is lopsided, take
// the general path.
bool writeFloatOnGrid(char*& out, float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const uint32_t fraction = bits & 0x7fffffu;
    const float magnitude = std::abs(value);
    if (!(magnitude >= 1e-4f && magnitude < 1e5f) || fraction == 0)
        return false;
    // Half an ulp, 2^(biased exponent - 127 - 23 - 1), made from its bits.
    const uint64_t halfUlpBits = (uint64_t((bits >> 23) & 0xffu) - 151 + 1023) << 52;
    double halfUlp;
    std::memcpy(&halfUlp, &halfUlpBits, sizeof halfUlp);
    const bool evenFraction = (fraction & 1u) == 0;
    for (int decimals = 2; decimals <= kMaxDecimals; ++decimals) {
        const double scaled = double(magnitude) * kPowersOfTen[decimals];
        const double nearest = std::nearbyint(scaled);
        const double miss = std::abs(nearest - scaled);
        const double bound = halfUlp * kPowersOfTen[decimals];
        if (miss < bound || (miss == bound && evenFraction)) {
            out = writePlain(out, value < 0, uint64_t(nearest), decimals);
            return true;
        }
    }
    return false;
}

// Any value: its shortest round-trip digits from to_chars, then laid out.
template <typename Real>
char* writeAny(char* out, Real value)
{
    char sci[kMaxLength];
    // Without a precision, to_chars gives the shortest round-trip digits of
    // the argument's own type, here as "-d.ddde+xx".
    const char* end = std::to_chars(sci, sci + sizeof sci, value, std::chars_format::scientific).ptr;
    const char* p = sci;
    const bool negative = *p == '-';
    if (negative)
        ++p;
    char digits[24];
    int count = 0;
    for (; p < end && *p != 'e'; ++p)
        if (*p != '.')
            digits[count++] = *p;
    const bool negativeExponent = p[1] == '-';
    int exponent = 0;
    for (p += 2; p < end; ++p)
        exponent = exponent * 10 + (*p - '0');
    return layOut(out, negative, digits, count, negativeExponent ? -exponent : exponent);
}

template <typename Real>
char* writeSpecial(char* out, Real value, bool& done)
{
    done = true;
    if (std::isnan(value)) {
        std::memcpy(out, "nan", 3);
        return out + 3;
    }
    if (std::isinf(value)) {
        if (value < 0)
            *out++ = '-';
        std::memcpy(out, "inf", 3);
        return out + 3;
    }
    if (value == 0) {  // also -0, which Qt prints without a sign
        *out = '0';
        return out + 1;
    }
    done = false;
    return out;
}

}  // namespace

char* writeShortest(char* out, float value)
{
    bool done = false;
    out = writeSpecial(out, value, done);
    if (done || writeFloatOnGrid(out, value))
        return out;
    return writeAny(out, value);
}

char* writeShortest(char* out, double value)
{
    bool done = false;
    out = writeSpecial(out, value, done);
    // Millimetres in metres below 2^31, far below where the ulp reaches 10^-3.
    if (done || writeOnGrid(out, value, 1000.0, 3, 2147483648.0))
        return out;
    return writeAny(out, value);
}

char* writeInteger(char* out, int64_t value)
{
    return std::to_chars(out, out + kMaxLength, value).ptr;
}

char* writeDecimal(char* out, int64_t n, int decimals)
{
    if (n == 0) {
        *out = '0';
        return out + 1;
    }
    const uint64_t magnitude = n < 0 ? 0 - uint64_t(n) : uint64_t(n);
    return layOutScaled(out, n < 0, magnitude, decimals);
}

QByteArray shortest(float value)
{
    char text[kMaxLength];
    return QByteArray(text, int(writeShortest(text, value) - text));
}

QByteArray shortest(double value)
{
    char text[kMaxLength];
    return QByteArray(text, int(writeShortest(text, value) - text));
}

QByteArray shortestByDigits(float value)
{
    char text[kMaxLength];
    bool done = false;
    char* end = writeSpecial(text, value, done);
    return QByteArray(text, int((done ? end : writeAny(text, value)) - text));
}

QByteArray shortestByDigits(double value)
{
    char text[kMaxLength];
    bool done = false;
    char* end = writeSpecial(text, value, done);
    return QByteArray(text, int((done ? end : writeAny(text, value)) - text));
}

}  // namespace numbertext
