#include "metastock/Mbf.h"

#include <bit>
#include <cmath>

namespace vm::metastock {

float mbfToFloat(const std::uint8_t *in) noexcept
{
    const std::uint8_t exponent = in[3];
    if (exponent == 0)
        return 0.0f;
    if (exponent < 3) {
        // No normal IEEE single is this small; take the nearest subnormal instead of letting the
        // exponent wrap around to a huge value.
        const std::uint32_t mantissa = 0x800000u | (std::uint32_t(in[2] & 0x7F) << 16) | (in[1] << 8) | in[0];
        const float magnitude = std::ldexp(float(mantissa), int(exponent) - 129 - 24 + 1);
        return (in[2] & 0x80) ? -magnitude : magnitude;
    }
    const std::uint8_t e = exponent - 2;
    const std::uint32_t bits = (std::uint32_t((in[2] & 0x80) | (e >> 1)) << 24)
        | (std::uint32_t(((e & 1) << 7) | (in[2] & 0x7F)) << 16) | (std::uint32_t(in[1]) << 8) | in[0];
    return std::bit_cast<float>(bits);
}

std::optional<float> CVSMBF(QByteArrayView field) noexcept
{
    if (field.size() != 4)
        return std::nullopt;
    return mbfToFloat(reinterpret_cast<const std::uint8_t *>(field.data()));
}

std::optional<CampoMbf> floatToMbf(float value) noexcept
{
    if (!std::isfinite(value))
        return std::nullopt;
    if (value == 0.0f)
        return CampoMbf { 0, 0, 0, 0 };
    int k = 0;
    const float m = std::frexp(std::fabs(value), &k); // |value| = m * 2^k, 0.5 <= m < 1
    const int exponent = k + 128;
    if (exponent > 255)
        return std::nullopt;
    if (exponent < 1)
        return CampoMbf { 0, 0, 0, 0 }; // below MBF's range: the nearest it holds is zero
    const auto mantissa = std::uint32_t(std::ldexp(m, 24)); // 24 bits, the top one implied
    return CampoMbf { std::uint8_t(mantissa), std::uint8_t(mantissa >> 8),
        std::uint8_t(((mantissa >> 16) & 0x7F) | (value < 0 ? 0x80 : 0)), std::uint8_t(exponent) };
}

QString DataMS(QStringView testo)
{
    const QString numero = testo.toString();
    bool ok = false;
    const double v = numero.toDouble(&ok);
    if (!ok)
        return QString();
    if (v <= 991231)
        return numero.right(2) + u'/' + numero.mid(2, 2) + QLatin1String("/19") + numero.left(2);
    return numero.right(2) + u'/' + numero.mid(3, 2) + u'/' + QString::number(numero.left(3).toInt() + 1900);
}

QDate dataDaNumeroMS(double numero) noexcept
{
    if (!(numero >= 101 && numero <= 9991231) || numero != std::floor(numero))
        return QDate();
    const int n = int(numero);
    return QDate(1900 + n / 10000, (n / 100) % 100, n % 100);
}

int numeroDataMS(QDate data) noexcept
{
    if (!data.isValid() || data.year() < 1900 || data.year() > 2899)
        return 0;
    return (data.year() - 1900) * 10000 + data.month() * 100 + data.day();
}

} // namespace vm::metastock
