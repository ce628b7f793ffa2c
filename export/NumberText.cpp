#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace numbertext {
namespace {

// Lays out the digits of a shortest scientific text ("-1.2345e+02") the way
// Qt's 'g' format does in its shortest mode.
char* layOut(char* out, const char* sci, const char* sciEnd)
{
    const char* p = sci;
    if (*p == '-')
        *out++ = *p++;

    char digits[24];
    int count = 0;
    for (; p < sciEnd && *p != 'e'; ++p)
        if (*p != '.')
            digits[count++] = *p;
    int exponent = 0;
    std::from_chars(p + 1 + (p[1] == '+' ? 1 : 0), sciEnd, exponent);
    const int point = exponent + 1;  // digits before the decimal point

    // Qt picks the exponent form only where it is the shorter one.
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

template <typename Real>
char* writeReal(char* out, Real value)
{
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
    char sci[kMaxLength];
    // Without a precision, to_chars gives the shortest round-trip digits of
    // the argument's own type.
    const auto result = std::to_chars(sci, sci + sizeof sci, value, std::chars_format::scientific);
    return layOut(out, sci, result.ptr);
}

}  // namespace

char* writeShortest(char* out, float value)
{
    return writeReal(out, value);
}

char* writeShortest(char* out, double value)
{
    return writeReal(out, value);
}

char* writeInteger(char* out, int64_t value)
{
    return std::to_chars(out, out + kMaxLength, value).ptr;
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

}  // namespace numbertext
