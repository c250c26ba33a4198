#pragma once

#include <QString>
#include <QTemporaryDir>

// A temporary program folder for one test: TAVONEL_PROGRAM_DIR points at it
// for the lifetime of the object, and it is removed afterwards.
class DossierProgrammeTest final
{
public:
    DossierProgrammeTest();
    ~DossierProgrammeTest();
    DossierProgrammeTest(const DossierProgrammeTest &) = delete;
    DossierProgrammeTest &operator=(const DossierProgrammeTest &) = delete;

    [[nodiscard]] bool estValide() const { return m_dossier.isValid(); }
    // The folder, ending in a separator.
    [[nodiscard]] QString chemin() const;
    // Writes a file of the folder in Windows-1252 (text given with "\n").
    void ecrire(const QString &nom, const QString &texte) const;

private:
    QTemporaryDir m_dossier;
    QByteArray m_ancien;
    bool m_avaitAncien = false;
};
