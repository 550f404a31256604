#pragma once

#include <QByteArray>

/// Puts the process under a locale whose decimal sign is a comma, C library and Qt alike, until
/// the object goes. The locale is compiled for the purpose, so none need be installed.
class CommaLocale
{
  public:
    CommaLocale();
    ~CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    /// Whether a comma is the decimal sign now.
    static bool isActive();

  private:
    QByteArray m_earlier;
};
