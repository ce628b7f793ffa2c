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

// The value |n| / 10^decimals.
char* layOutScaled(char* out, bool negative, uint64_t n, int decimals)
{
    char digits[24];
    int count = int(std::to_chars(digits, digits + sizeof digits, n).ptr - digits);
    const int exponent = count - 1 - decimals;
    while (digits[count - 1] == '0')
        --count;
    return layOut(out, negative, digits, count, exponent);
}

// Most numbers written are on a decimal grid: coordinates rounded to the
// centimetre, distances in whole millimetres given in metres. For a value v
// that is exactly the nearest float (or double) to n / 10^d, and whose ulp
// is below 10^-d, no decimal with fewer digits rounds to v (it would lie on
// a coarser grid, at least 10^-d away, beyond v's rounding interval), so
// n / 10^d is v's shortest text. The test is exact: n / 10^d in the type's
// own arithmetic is the correctly rounded quotient.
template <typename Real>
bool writeOnGrid(char*& out, Real value, Real scale, int decimals, Real limit)
{
    if (!(std::abs(value) < limit))
        return false;
    const double scaled = std::nearbyint(double(value) * double(scale));
    const Real candidate = Real(scaled) / scale;
    if (candidate != value)
        return false;
    out = layOutScaled(out, value < 0, uint64_t(std::abs(scaled)), decimals);
    return true;
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
    // Centimetres below 65536 (ulp at most 2^-8), millimetres below 8192 (ulp at most 2^-11).
    if (done || writeOnGrid(out, value, 100.0f, 2, 65536.0f) || writeOnGrid(out, value, 1000.0f, 3, 8192.0f))
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
