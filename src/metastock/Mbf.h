#pragma once

#include <QByteArrayView>
#include <QDate>
#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>
#include <optional>

namespace vm::metastock {

// Every number in a MetaStock archive is a 4-byte Microsoft Binary Format single.
using CampoMbf = std::array<std::uint8_t, 4>;

// Converts four raw bytes, as they lie in the file, to an IEEE single. Exponent byte 0 is zero
// whatever the other bytes hold; exponent bytes 1 and 2 (below the smallest normal IEEE single)
// give the nearest subnormal value; 0xFF gives a large finite value, never infinity or NaN.
float mbfToFloat(const std::uint8_t *bytes) noexcept;

// The same on a field of any length: a field that is not exactly 4 bytes long is the error
// "Invalid string argument" (number 1000), reported as an empty result instead of a value.
std::optional<float> CVSMBF(QByteArrayView field) noexcept;
inline constexpr int kErroreCvsmbf = 1000;

// The reverse, for tests and demo archives: empty for NaN, infinities and magnitudes that MBF
// cannot hold (at or above 2^127). Zero gives four zero bytes.
std::optional<CampoMbf> floatToMbf(float value) noexcept;

// "dd/mm/yyyy" from the decimal digits of a date number: YYMMDD up to 991231, then YYYMMDD with
// YYY = year - 1900. Text that is not such a number gives text that no date parser accepts.
QString DataMS(QStringView numero);

// The calendar date of a date number as stored (a converted MBF single); invalid for anything that
// is not a whole number naming a real day between 1900 and 2899.
QDate dataDaNumeroMS(double numero) noexcept;

// The date number of a calendar date (YYMMDD before 2000, YYYMMDD from 2000); 0 for an invalid date.
int numeroDataMS(QDate data) noexcept;

} // namespace vm::metastock
