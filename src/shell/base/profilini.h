#pragma once

#include <QString>
#include <QStringList>

// Reader and writer of the private profile format of Agenda.ini and of the
// *.zek files: "[section]" lines, "key=value" lines, Windows-1252 on disk.
// Sections and keys are matched without regard to case; a section name is
// whatever stands between the first "[" and the last "]" of its line, so that
// "[Cabinet [Dr] = 2]" is the section "Cabinet [Dr] = 2". A value enclosed in
// matching quotes is read without them. Reads behave as through a buffer of
// 255 characters: values and defaults are cut at 254, and a default loses its
// trailing blanks. A missing file reads as an empty one.
class FichierProfil final
{
public:
    // Reads the file; a missing or unreadable file gives an empty profile.
    [[nodiscard]] static FichierProfil charger(const QString &chemin);

    // The value, or std::nullopt-like: *trouve tells whether the key exists.
    [[nodiscard]] QString valeur(const QString &section, const QString &cle, bool *trouve = nullptr) const;
    // Sets the key, adding the section at the end and the key at the end of
    // its section when they are missing. An empty value is stored as empty.
    void fixer(const QString &section, const QString &cle, const QString &valeur);
    [[nodiscard]] QStringList sections() const;

    // Writes through a temporary file and a rename, so that a failure never
    // leaves a half-written file. False when the file could not be written.
    bool enregistrer(const QString &chemin) const;

private:
    qsizetype ligneSection(const QString &section) const;
    QStringList m_lignes;
    bool m_utf8 = false; // the file began with a UTF-8 byte order mark
};

// The platform's private profile read and write.
[[nodiscard]] QString LireIni(const QString &section, const QString &cle, const QString &defaut, const QString &chemin);
// The result of the write is not reported: a read-only file loses the
// setting without a word.
void EcrireIni(const QString &section, const QString &cle, const QString &valeur, const QString &chemin);

// LireIni / EcrireIni on Agenda.ini in the program folder.
[[nodiscard]] QString CheminAgendaIni();
[[nodiscard]] QString LireAgendaIni(const QString &section, const QString &cle, const QString &defaut);
void EcrireAgendaIni(const QString &section, const QString &cle, const QString &valeur);
