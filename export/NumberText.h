#pragma once
// Number texts for CSV files: the shortest decimal text that reads back as
// the same value, laid out like Qt's 'g' format in its shortest mode (plain
// decimals unless the exponent form is shorter: "0.13", "300", "1e-05").
// A float is printed with the digits of the float, not of the double it
// widens to: 0.1f gives "0.1", not "0.100000001490116".

#include <QByteArray>
#include <cstdint>

namespace numbertext {

// Largest text any of the functions below writes, with room to spare.
constexpr int kMaxLength = 32;

// Each writes at `out` (at least kMaxLength bytes) and returns the end.
char* writeShortest(char* out, float value);
char* writeShortest(char* out, double value);
char* writeInteger(char* out, int64_t value);
// The decimal n / 10^decimals (decimals 0..10), as writeShortest writes the
// double nearest to it: millimetres as metres without dividing.
char* writeDecimal(char* out, int64_t n, int decimals);

QByteArray shortest(float value);
QByteArray shortest(double value);
// The same text always found the general way, from the shortest digits,
// without the shortcut for values on a decimal grid (to check the shortcut).
QByteArray shortestByDigits(float value);
QByteArray shortestByDigits(double value);

}  // namespace numbertext
