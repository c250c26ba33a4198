#pragma once

#include <QByteArray>
#include <QString>

// Text files, profile files and the serial line carry Windows-1252. A
// character that the code page cannot hold is written as "?", as the
// platform's own conversion does.
[[nodiscard]] QByteArray VersCp1252(const QString &texte);
[[nodiscard]] QString DepuisCp1252(const QByteArray &octets);
